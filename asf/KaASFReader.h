// KaASFReader: reads the text of a skeleton file into a KaASF; the parser
// and its state stay inside the reader's own sources.
#pragma once

#include <iosfwd>

class KaASF;

// Whether the stream begins with a valid header (":asf-internal",
// ":version"); either output may be null. A failed check records why.
bool KaASFReadHeader(std::istream& in, int* internalFlag, float* version);

// The header, every section, and at the end the missing bone ids, read into
// the document as it is. Failures are recorded through the error handler:
// the section's own message, with the number of the line where it was
// found, under the section's general message. After a failed read the
// document is cleared.
void KaASFReadDocument(std::istream& in, KaASF* document);
