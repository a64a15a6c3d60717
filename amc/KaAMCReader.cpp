// The AMC reader: the header check, and the motion, field and bone readers.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <istream>
#include <string>
#include <utility>
#include <vector>

#include "amc/KaAMC.h"
#include "amc/KaScanFloat.h"
#include "amc/KaScanText.h"
#include "toolkit/KtCancelHandler.h"
#include "toolkit/KtCompStream.h"
#include "toolkit/KtError.h"

using KaScanText::isDigit;
using KaScanText::kMaxLineLength;
using KaScanText::kMaxNameLength;
using KaScanText::LineRead;
using KaScanText::peekCharacter;
using KaScanText::readInteger;
using KaScanText::readName;
using KaScanText::readValueLine;
using KaScanText::skipWhitespace;
using KaScanText::Traits;

namespace
{

// Chunks by which the arrays grow while reading; each is trimmed once.
// Names and bones grow by at least their chunk and at most doubling, so that
// a field of a million lines is not moved a million/50 times.
constexpr int kFieldChunk = 250;
constexpr int kNameChunk = 50;
constexpr int kBoneChunk = 50;
constexpr int kCancelInterval = 20;
// The characters of a whole motion are taken from its stream in blocks.
constexpr int kBlockSize = 1 << 16;

// A comment is skipped 128 characters at a time; the rest of a longer one
// is read as a new header line.
constexpr std::streamsize kCommentChunk = 128;
constexpr std::streamsize kDrainChunk = 1024;

// "1 1 1 ..." packs the most numbers into a line: 63.
constexpr int kMaxValues = kMaxLineLength / 2 + 1;

// How much of an over-long name or keyword a message shows.
constexpr int kShownNameLength = 20;
constexpr int kShownKeywordLength = 200;

constexpr const char* kReadError = "Error reading file.";

// The start of an over-long name as a message shows it. Binary data (NUL
// bytes, say) would show as nothing at all; its bytes show as '?'.
std::string shownStart(const char* name)
{
    std::string shown(name, kShownNameLength);
    for (char& c : shown)
        if (static_cast<unsigned char>(c) < ' ' || c == '\x7f')
            c = '?';
    return shown;
}

int grown(int count, int chunk)
{
    return count + std::max(chunk, count);
}

int refuse(KtStr* message, const char* reason)
{
    if (message)
        *message = reason;
    return 0;
}

// The characters of a motion, one at a time, for its reader. The reader
// keeps the stream's state as formatted input would: eof at the end of the
// characters, fail on a failed read.
//
// StreamSource takes them straight from the stream's buffer, so the stream
// stands exactly after what was read: single fields and bones, and motions
// read only up to a number of fields.
class StreamSource
{
public:
    explicit StreamSource(std::istream& in)
        : _in(in)
        , _buffer(in.rdbuf())
    {
    }
    std::istream& stream() { return _in; }
    int peek() { return _buffer->sgetc(); }
    // Only after peek gave a character.
    void bump() { _buffer->sbumpc(); }
    // The rest of the line is always copied out of the stream.
    char* takeLine(int) { return nullptr; }

private:
    std::istream& _in;
    std::streambuf* _buffer;
};

// BlockSource takes the stream's characters in large blocks, sparing the
// stream buffer a call for every character. What it has taken is gone from
// the stream, so it serves reads that go on to the stream's end.
class BlockSource
{
public:
    explicit BlockSource(std::istream& in)
        : _in(in)
        , _buffer(in.rdbuf())
        , _block(kBlockSize)
    {
    }
    std::istream& stream() { return _in; }
    int peek()
    {
        if (_next == _end && !_refill())
            return Traits::eof();
        return Traits::to_int_type(*_next);
    }
    void bump() { ++_next; }
    // When the block holds the rest of the line, with at most maxLength
    // characters before its newline, takes it, newline included, and gives
    // it in place with the newline replaced by a terminator; else null.
    char* takeLine(int maxLength)
    {
        auto* line = static_cast<char*>(std::memchr(
            _next, '\n', std::min<long>(_end - _next, maxLength + 1)));
        if (!line)
            return nullptr;
        *line = '\0';
        std::swap(line, _next);
        ++_next;
        return line;
    }

private:
    bool _refill()
    {
        std::streamsize got = _buffer->sgetn(_block.data(), kBlockSize);
        _next = _block.data();
        _end = _next + std::max<std::streamsize>(got, 0);
        return _next != _end;
    }

    std::istream& _in;
    std::streambuf* _buffer;
    KtArray<char> _block;
    char* _next = nullptr;
    char* _end = nullptr;
};

// A decompressing stream is read to its end, whatever state the reader left
// it in, so that the command feeding it can finish instead of breaking on a
// closed pipe, and closing it then tells whether the command failed (a
// truncated file reads as a shorter motion otherwise).
void drain(KtCompIFStream& in)
{
    if (!in.compressed())
        return;
    in.clear();
    while (in.good())
        in.ignore(kDrainChunk, Traits::eof());
}

// The fields of one read, gathered in blocks of kFieldChunk. A block never
// moves once made, so even a very long motion is read in linear time;
// moveInto moves each field once more, into an array of the exact count.
class FieldBlocks
{
public:
    KaAMCField& append()
    {
        int slot = _count % kFieldChunk;
        if (slot == 0)
            _addBlock();
        ++_count;
        return _blocks[_used - 1][slot];
    }

    void moveInto(KtDArray<KaAMCField>& fields)
    {
        fields._clear();
        fields._resize(_count);
        int i = 0;
        for (int b = 0; b < _used; ++b)
        {
            for (KaAMCField& field : _blocks[b])
                if (i < _count)
                    fields[i++] = std::move(field);
            _blocks[b]._clear();
        }
    }

private:
    void _addBlock()
    {
        if (_used == _blocks.count())
            _blocks._resize(std::max(2 * _blocks.count(), 16));
        _blocks[_used++]._resize(kFieldChunk);
    }

    KtDArray<KtDArray<KaAMCField>> _blocks;
    int _used = 0;
    int _count = 0;
};

// The first field's bone names, against which every later line's name is
// compared while reading. Each name's first kKeyBytes are kept zero-padded
// as two machine words, so that the usual line, whose name is the one
// expected and was read into a buffer zeroed as far, compares in two steps:
// when the words agree and hold the name's end, the names are equal. Longer
// names, and names that differ in letter case, go the long way. Only the
// first difference is recorded.
class LineNames
{
public:
    static constexpr int kKeyBytes = 16;

    void start(const KtArray<KtStr>& names, KaAMCLineMismatch* mismatch)
    {
        _mismatch = mismatch;
        _names = &names;
        _count = names.count();
        _fieldIndex = 1;
        _comparing = mismatch->field < 0;
    }

    // Before each later field. The keys are made for the first of them
    // only, so that a motion of one field needs none.
    void startField()
    {
        if (!_names || !_keys.empty() || _count == 0)
            return;
        _keys.assign(_count, Key());
        for (int i = 0; i < _count; ++i)
            std::memcpy(_keys[i].words,
                        (*_names)[i].text(),
                        std::min((*_names)[i].length(), kKeyBytes));
    }

    // name: zeroed for kKeyBytes before it was read.
    void compareLine(int line, const char* name)
    {
        if (_comparing && !_sameKey(line, name))
            _compareSlowly(line, name);
    }

    // At the end of each field: one that ends early differs too.
    void endField(int count)
    {
        if (_comparing && count < _count)
            _record(count, "");
        ++_fieldIndex;
    }

private:
    // The last byte of the key's second word, which is zero when the name
    // ends within the key.
    static constexpr int kLastByteShift = 56;

    struct Key
    {
        uint64_t words[2] = {0, 0};
    };

    bool _sameKey(int line, const char* name) const
    {
        if (line >= _count)
            return false;
        const Key& key = _keys[line];
        uint64_t words[2];
        std::memcpy(words, name, kKeyBytes);
        return words[0] == key.words[0] && words[1] == key.words[1] &&
               (key.words[1] >> kLastByteShift) == 0;
    }

    // Names of more than kKeyBytes - 1 characters, names in another letter
    // case, and names that differ.
    void _compareSlowly(int line, const char* name)
    {
        if (line >= _count || (*_names)[line].iCmp(name) != 0)
            _record(line, name);
    }

    void _record(int line, const char* name)
    {
        _mismatch->field = _fieldIndex;
        _mismatch->line = line;
        _mismatch->name = name;
        _comparing = false;
    }

    KaAMCLineMismatch* _mismatch = nullptr;
    const KtArray<KtStr>* _names = nullptr;
    std::vector<Key> _keys;
    int _count = 0;
    int _fieldIndex = 0;
    // Until the first difference.
    bool _comparing = false;
};

} // namespace

// ---- The field reader ---------------------------------------------------

// Reads bones and fields from a source of characters (see StreamSource and
// BlockSource); the fields' bones are gathered in a buffer kept across the
// fields of one read, so that each field allocates its bones exactly once.
template <class Source>
class KaAMCFieldReader
{
public:
    explicit KaAMCFieldReader(std::istream& in)
        : _source(in)
    {
    }
    std::istream& stream() { return _source.stream(); }

    // With names, each bone's name is stored at its position.
    void readField(KaAMCField& field, KtDArray<KtStr>* names);
    void readBone(KaAMCBone& bone);
    // The fields read from now on, counted from 1, are compared with the
    // first field's names; the first that differs is recorded in mismatch.
    void compareWith(const KtArray<KtStr>& firstNames,
                     KaAMCLineMismatch* mismatch)
    {
        _lineNames.start(firstNames, mismatch);
    }

private:
    int _readBones(KaAMCField& field, KtDArray<KtStr>* names);

    Source _source;
    KtDArray<KaAMCBone> _lines;
    LineNames _lineNames;
};

template <class Source>
void KaAMCFieldReader<Source>::readBone(KaAMCBone& bone)
{
    char line[kMaxLineLength + 1];
    const char* text = nullptr;
    switch (readValueLine(_source, line, &text))
    {
    case LineRead::kTooLong:
        KtError("The bone's values are longer than %d characters.",
                kMaxLineLength);
        KtError("Unable to read bone's values.");
        return;
    case LineRead::kFailed:
        KtError("Unable to read bone's values.");
        return;
    case LineRead::kRead:
        break;
    }
    // Text after the first non-number is ignored.
    float values[kMaxValues];
    int count = 0;
    const char* cursor = text;
    while (count < kMaxValues && KaScanFloat(cursor, &values[count]))
        ++count;
    bone.setValues(values, count);
}

// A field ends where the next word starts with a digit: the next frame
// number. Bone names therefore never start with a digit, and a negative
// frame number reads as a bone name.
template <class Source>
void KaAMCFieldReader<Source>::readField(KaAMCField& field,
                                         KtDArray<KtStr>* names)
{
    field._bones._clear();
    readInteger(_source, &field._frameNumber);
    if (stream().eof())
        return;
    if (stream().fail())
    {
        KtError("Unable to read field number.");
        return;
    }
    if (!names)
        _lineNames.startField();
    int count = _readBones(field, names);
    _lineNames.endField(count);
    if (names)
        names->_resize(count);
    field._bones._resize(count);
    for (int i = 0; i < count; ++i)
        field._bones[i] = std::move(_lines[i]);
}

// Returns the number of bones read into _lines (and their names into
// names), up to the end of the field or the first error.
template <class Source>
int KaAMCFieldReader<Source>::_readBones(KaAMCField& field,
                                         KtDArray<KtStr>* names)
{
    std::istream& in = stream();
    for (int count = 0;; ++count)
    {
        skipWhitespace(_source);
        if (in.eof())
            return count;
        if (in.fail())
        {
            KtError("Unable to read past whitespace.");
            return count;
        }
        int next = peekCharacter(_source);
        if (in.eof())
            return count;
        if (in.fail())
        {
            KtError("Unable to read character.");
            return count;
        }
        if (isDigit(next))
            return count;

        char name[kMaxNameLength + 1];
        std::memset(name, 0, LineNames::kKeyBytes);
        if (!readName(_source, name))
        {
            KtError("The bone name \"%s...\" is longer than %d characters.",
                    shownStart(name).c_str(),
                    kMaxNameLength);
            KtError("Unable to read bone name for field %d.",
                    field._frameNumber);
            return count;
        }
        // A last name with neither values nor a newline is dropped.
        if (in.eof())
            return count;
        if (in.fail())
        {
            KtError("Unable to read bone name for field %d.",
                    field._frameNumber);
            return count;
        }

        if (names)
        {
            if (count >= names->count())
                names->_resize(grown(names->count(), kNameChunk));
            (*names)[count] = name;
        }
        else
            _lineNames.compareLine(count, name);
        if (count >= _lines.count())
            _lines._resize(grown(_lines.count(), kBoneChunk));
        readBone(_lines[count]);
        if (theExceptObj.errorOccurred())
        {
            KtError("Unable to read bone '%s' for field %d.",
                    name,
                    field._frameNumber);
            return count;
        }
    }
}

// ---- KaAMCBone -----------------------------------------------------------

void KaAMCBone::scanFrom(std::istream& in)
{
    KaAMCFieldReader<StreamSource>(in).readBone(*this);
}

// ---- KaAMCField ----------------------------------------------------------

void KaAMCField::scanFrom(std::istream& in)
{
    scanFrom(in, nullptr);
}

void KaAMCField::scanFrom(std::istream& in, KtDArray<KtStr>* names)
{
    KaAMCFieldReader<StreamSource>(in).readField(*this, names);
}

// ---- KaAMC ---------------------------------------------------------------

int KaAMC::streamContainsAMC(std::istream& in,
                             int* units,
                             Mode_t* mode,
                             KtStr* message)
{
    bool modeSeen = false;
    bool unitsSeen = false;
    for (;;)
    {
        char c = 0;
        in >> c;
        if (in.fail())
            return refuse(message, kReadError);
        if (c == '#')
        {
            in.ignore(kCommentChunk, '\n');
            if (in.fail())
                return refuse(message, kReadError);
            continue;
        }
        if (c != ':')
        {
            in.putback(c);
            if (in.fail())
                return refuse(message, kReadError);
            if (!modeSeen)
                return refuse(message, "File does not specify mode.");
            if (!unitsSeen)
                return refuse(message, "File does not specify units.");
            return 1;
        }

        KtStr keyword;
        if (!keyword.scanLine(in))
            return refuse(message, kReadError);
        keyword.trimLeft();
        keyword.trimRight();
        if (keyword.iCmp("FULLY-SPECIFIED") == 0)
        {
            modeSeen = true;
            if (mode)
                *mode = FULLY_SPECIFIED;
        }
        else if (keyword.iCmp("DEGREES") == 0 || keyword.iCmp("RADIANS") == 0)
        {
            unitsSeen = true;
            if (units)
                *units = keyword.iCmp("DEGREES") == 0 ? 1 : 0;
        }
        else
        {
            // A whole line of junk is shown by its start only.
            if (message && keyword.length() > kShownKeywordLength)
                message->setF("Unrecognized key word \"%.*s...\".",
                              kShownKeywordLength,
                              keyword.text());
            else if (message)
                message->setF("Unrecognized key word \"%s\".", keyword.text());
            return 0;
        }
    }
}

int KaAMC::fileContainsAMC(const char* path)
{
    KtCompIFStream in;
    in.open(path);
    if (in.fail())
    {
        KtError("Unable to open \"%s\".", path);
        return 0;
    }
    int found = streamContainsAMC(in, nullptr, nullptr, nullptr);
    drain(in);
    return found;
}

void KaAMC::read(const char* path)
{
    KtCompIFStream in;
    in.open(path);
    if (in.fail())
    {
        KtError("Unable to open '%s'.", path);
        return;
    }
    scanFrom(in);
    drain(in);
    in.close();
    if (theExceptObj.errorOccurred())
        KtError("Unable to read '%s'.", path);
}

void KaAMC::readFirstField(const char* path)
{
    KtCompIFStream in;
    in.open(path);
    if (in.fail())
    {
        KtError("Unable to open '%s'.", path);
        return;
    }
    _scanFrom(in, 1);
    drain(in);
    in.close();
    if (theExceptObj.errorOccurred())
        KtError("Unable to read '%s'.", path);
}

void KaAMC::scanFrom(std::istream& in)
{
    _scanFrom(in, 0);
}

// The header's values are kept as they are found, even when the header
// turns out incomplete. A read to the end of the stream takes its
// characters in blocks; one that stops after some fields leaves the rest in
// the stream.
void KaAMC::_scanFrom(std::istream& in, int maxFields)
{
    KtStr reason;
    if (!streamContainsAMC(in, &_units, &_mode, &reason))
    {
        KtError("%s", reason.text());
        KtError("File does not contain amc data.");
        return;
    }
    if (maxFields == 0)
    {
        KaAMCFieldReader<BlockSource> reader(in);
        _scanFields(reader, maxFields);
    }
    else
    {
        KaAMCFieldReader<StreamSource> reader(in);
        _scanFields(reader, maxFields);
    }
}

// The first field names the bones for all others, which are compared with
// it.
template <class Reader>
void KaAMC::_scanFields(Reader& reader, int maxFields)
{
    FieldBlocks fields;
    _lineMismatch = KaAMCLineMismatch();
    for (int n = 0;;)
    {
        reader.readField(fields.append(), n == 0 ? &_boneNames : nullptr);
        if (n == 0)
            reader.compareWith(_boneNames, &_lineMismatch);
        ++n;
        // A failure seen at the end of the file keeps what was read.
        if (reader.stream().eof())
            break;
        if (theExceptObj.errorOccurred())
        {
            KtError("Unable to read field.");
            _clear();
            return;
        }
        if (maxFields != 0 && n == maxFields)
            break;
        if (n % kCancelInterval == 0 && KtCancelHandler::checkCancel())
        {
            _clear();
            return;
        }
    }
    fields.moveInto(_fields);
    _pointFieldsAtNames();
}
