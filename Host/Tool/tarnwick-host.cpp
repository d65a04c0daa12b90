// tarnwick-host: the command-line host of the Tarnwick importer. See --help.

#include "twHostCli.h"

#include <iostream>

int main(int argc, char** argv) { return twHostMain(argc, argv, std::cout, std::cerr); }
