#include "cli/command_line.h"

int main(int argc, char** argv) { return qel::cli::runCommandLine(argc, argv); }
