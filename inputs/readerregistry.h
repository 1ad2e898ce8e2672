#pragma once

// Registers the reader of every input format with InputNode; called once at start.
void registerInputReaders();
