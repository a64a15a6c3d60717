// File access checks that give the user a specific reason before a file is
// opened, and the small path helpers they use.
#pragma once

#include "toolkit/KtStr.h"

// 1 when the file can be read; else 0 with the reasons recorded as errors.
int KtPathCheckReadAccess(const char* path);
// 1 when the file can be overwritten or created; else 0 with the reasons
// recorded as errors. A bare file name (no '/') that does not exist is taken
// as creatable in the current directory without further test.
int KtPathCheckWriteAccess(const char* path);

// The directory part of a path: empty for "/", for a name without '/' and for
// a name directly under "/"; a trailing '/' is dropped before the search.
KtStr KtFileDirOfPath(const char* path);

// Non-zero when stat() succeeds and the directory bit of the mode is set.
int KtFileIsDirectory(const char* path);
int KtFileExists(const char* path);
// Permission tests for the real user and group, as access() makes them.
int KtFileHaveReadAccess(const char* path);
int KtFileHaveWriteAccess(const char* path);
int KtFileHaveExecuteAccess(const char* path);
