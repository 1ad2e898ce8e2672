#pragma once

// Thrown by a run when the process has gone past the memory limit of the preferences
// and the user chose not to raise it; the application closes with a recovery file.
class MaxMemoryException
{
};
