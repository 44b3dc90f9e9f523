// In place of the editor command where nothing is built that could show one.
#include "tools/commands/Commands.h"

void AddEditorCommand(CLI::App&) {}
