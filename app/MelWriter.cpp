// The MEL script that sets up Maya's input device and imports the MOV file.
#include "app/MelWriter.h"

KtStr theFilterText;
