#pragma once

#include <sys/types.h>

/** The options of the command line of the test program; set before the tests run. */
struct Options {
    bool writes = false;  /**< call the setters too, and restore what they change */
    bool restart = false; /**< let init restart the service in the tests of its death */
    pid_t kill = 0; /**< the process of the service that these tests kill; the user restarts it */
};

const Options& options();

/**
 * Reads the options from what GoogleTest has left of the command line.
 *
 * @return -1 to run the tests; else the exit status: 0 after --help and --list-methods, 2 for a
 * wrong command line
 */
int readOptions(int argc, char** argv);
