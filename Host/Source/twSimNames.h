#pragma once
// Readable names of the importer interface's numbers, for traces and reports.

#include <string>

// "imGetInfo8"; "selector 99" for a number with no name.
std::string twSimSelectorName(int selector);
// "aiGetFrame"; "async selector 9" for a number with no name.
std::string twSimAsyncSelectorName(int selector);
