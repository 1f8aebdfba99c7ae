// A show on each monitor: a process each, which this one waits for. Whatever ends one of them (a key, a
// signal, a crash) ends all; so does the end of this one.
#pragma once

// How many there can be: what `count` gives, asked in a process of its own, so that this one keeps no
// connection to a window system that it forks with. At least 1.
int CountInAnotherProcess(int (*count)());

// Starts so many processes, and gives each its number, 0 and up. The caller goes on in every one of them. The
// process itself does not return: it ends as the first of them did.
int ForkShows(int count);
