#pragma once

// The option editors are the parameter widgets now.
#include "workbench/parameterwidget.h"
