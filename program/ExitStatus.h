// The exit statuses of every program of the toolset.
#pragma once

constexpr int kExitSuccess = 0;
constexpr int kExitFailure = 1;
