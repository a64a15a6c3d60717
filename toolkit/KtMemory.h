// What a program of the toolset does when memory runs out: one message on
// standard error, then the process stops.
#pragma once

// Writes "Memory allocation failed\n" to standard error and aborts. Running
// out of memory is not reported through the error handler: nothing could be
// relied on to print it.
[[noreturn]] void KtMemoryExhausted();

// From now on an allocation that fails anywhere (new, the standard
// containers and strings, an array size too large to allocate) ends the
// process through KtMemoryExhausted, never as a silent abort. Called once by
// each program at its start.
void KtInstallMemoryHandler();
