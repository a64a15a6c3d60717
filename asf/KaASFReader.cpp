// The skeleton reader's entry points: each runs one parser over the stream.
#include "asf/KaASFReader.h"

#include "asf/Ka_ASFParser.h"

bool KaASFReadHeader(std::istream& in, int* internalFlag, float* version)
{
    Ka_ASFParser parser(in, nullptr);
    return parser.readHeader(internalFlag, version);
}

void KaASFReadDocument(std::istream& in, KaASF* document)
{
    Ka_ASFParser parser(in, document);
    parser.read();
}
