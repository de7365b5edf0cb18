#pragma once

#include <sys/types.h>

/** What the command line of the test program asks for; set before the tests run. */
struct Options {
    bool writes = false;   ///< the setters are called too; what they change is put back
    bool restart = false;  ///< init restarts the service for the tests of deaths
    pid_t kill = 0;        ///< the service's process, which these tests kill; somebody restarts it
};

const Options& options();

/**
 * Takes the options from what GoogleTest has left of the command line. Gives the exit status when
 * there is nothing to test: 0 after --help and --list-methods, 2 for a wrong command line; -1 else.
 */
int readOptions(int argc, char** argv);
