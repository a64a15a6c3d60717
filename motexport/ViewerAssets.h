// The viewer page's own files (motexport/viewer/), built into the program
// as text by CMake.
#pragma once

// The page with its slots, {{name}}: title, style, motion and script.
extern const char* const kViewerPage;
// The content of its <style> and of its <script> elements.
extern const char* const kViewerStyle;
extern const char* const kViewerScript;
