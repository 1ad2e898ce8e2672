#pragma once

// Registers the writer of every output format with OutputNode; called once at start.
void registerOutputWriters();
