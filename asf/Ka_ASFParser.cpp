// The skeleton reader's core: tokens, messages and numbers, the header, and
// the section loop with the short sections and the root.
#include "asf/Ka_ASFParser.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>
#include <strings.h>

#include "asf/KaASF.h"
#include "asf/KaAxisOrder.h"
#include "geometry/KtAngles.h"
#include "toolkit/KtError.h"

namespace
{

// Longer skeleton names are kept, with a warning.
constexpr size_t kNameLimit = 50;

// As "%g" reads a float: leading blanks, a sign and the longest prefix that
// forms a number ("1.5abc" is 1.5). Nothing converted gives 0 and false.
bool convertFloat(const char* text, float* value)
{
    char* end = nullptr;
    *value = std::strtof(text, &end);
    if (end != text)
        return true;
    *value = 0.0f;
    return false;
}

// As "%d" reads an int: the longest prefix that forms a number; values
// beyond the range of int are clamped to it.
bool convertInt(const char* text, int* value)
{
    char* end = nullptr;
    long number = std::strtol(text, &end, 10);
    if (end == text)
    {
        *value = 0;
        return false;
    }
    if (number > INT_MAX)
        number = INT_MAX;
    if (number < INT_MIN)
        number = INT_MIN;
    *value = static_cast<int>(number);
    return true;
}

// Messages of the header check carry no line prefix.
bool headerFailure(const char* message)
{
    KtError("%s", message);
    return false;
}

} // namespace

struct Ka_ASFParser::RootState
{
    bool axis = false;
    bool order = false;
    bool position = false;
    bool orientation = false;
};

struct Ka_ASFParser::Section
{
    const char* keyword;
    bool (Ka_ASFParser::*read)();
    const char* failure;
    bool internalOnly;
};

Ka_ASFParser::Ka_ASFParser(std::istream& in, KaASF* document)
    : _tokenizer(in)
    , _document(document)
{
}

// ---------------------------------------------------------------- tokens

bool Ka_ASFParser::_next()
{
    if (_held)
        _held = false;
    else
        _tokenizer.getNextNonEOLToken(_token, kTokenSize);
    return !_atEnd();
}

bool Ka_ASFParser::_nextInLine()
{
    if (_held)
        _held = false;
    else
        _tokenizer.getNextToken(_token, kTokenSize);
    return !_atEnd();
}

// A word that the end of the file cuts short is still a word; the input has
// ended only when nothing more could be read.
bool Ka_ASFParser::_atEnd() const
{
    return _token[0] == '\0' && !_tokenizer.good();
}

bool Ka_ASFParser::_is(const char* keyword) const
{
    return strcasecmp(_token, keyword) == 0;
}

bool Ka_ASFParser::_isEndOfSection() const
{
    return std::strcmp(_token, ASFTokenizer::kEndOfSection) == 0;
}

bool Ka_ASFParser::_isEndOfLine() const
{
    return std::strcmp(_token, ASFTokenizer::kEndOfLine) == 0;
}

// -------------------------------------------------------------- messages

void Ka_ASFParser::_raise(bool warning,
                          int line,
                          const char* format,
                          va_list args)
{
    KtStr message;
    message.setV(format, args);
    if (warning)
        KtWarning("Line %d:  %s", line, message.text());
    else
        KtError("Line %d:  %s", line, message.text());
}

bool Ka_ASFParser::_fail(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    _raise(false, _tokenizer.lineNumber(), format, args);
    va_end(args);
    return false;
}

bool Ka_ASFParser::_failAtLine(int line, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    _raise(false, line, format, args);
    va_end(args);
    return false;
}

void Ka_ASFParser::_warn(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    _raise(true, _tokenizer.lineNumber(), format, args);
    va_end(args);
}

// --------------------------------------------------------------- numbers

bool Ka_ASFParser::_readFloat(float* value)
{
    _next();
    if (convertFloat(_token, value))
        return true;
    KtError("Invalid number.");
    return false;
}

bool Ka_ASFParser::_readInt(int* value)
{
    _next();
    if (convertInt(_token, value))
        return true;
    KtError("Invalid number.");
    return false;
}

bool Ka_ASFParser::_readFloats(float* values,
                               int count,
                               const char* invalidMessage)
{
    for (int i = 0; i < count; ++i)
        if (!_readFloat(&values[i]))
            return _fail("%s", invalidMessage);
    return true;
}

// The current token as one end of a limit: "inf", "-inf" or a number.
bool Ka_ASFParser::_limitValue(float* value) const
{
    if (_is("inf"))
        *value = KaASFLimits::kInfinity;
    else if (_is("-inf"))
        *value = -KaASFLimits::kInfinity;
    else
        return convertFloat(_token, value);
    return true;
}

// Angles are held in radians whatever unit the file was written in.
float Ka_ASFParser::_radians(float angle) const
{
    if (_document->header().angleUnit != 1)
        return angle;
    return static_cast<float>(angle * kKtRadiansPerDegree);
}

// ---------------------------------------------------------------- header

bool Ka_ASFParser::readHeader(int* internalFlag, float* version)
{
    if (internalFlag)
        *internalFlag = 0;
    if (!_next())
        return headerFailure("Unexpected end of file.");
    if (_is(":asf-internal"))
    {
        if (internalFlag)
            *internalFlag = 1;
        if (!_next())
            return headerFailure("Unexpected end of file.");
        if (!_isEndOfSection())
            return headerFailure("Unexpected value for :asf-internal section.");
        if (!_next())
            return headerFailure("Unexpected end of file.");
    }
    if (!_is(":version"))
    {
        KtError("File does not contain the ':version' keyword.");
        KtError("File does not contain ASF data.");
        return false;
    }
    float number = 0.0f;
    if (!_next())
        return headerFailure("Unexpected end of file.");
    if (!convertFloat(_token, &number))
    {
        KtError("Invalid number.");
        return _fail("Invalid value for :version.");
    }
    // ":version" carries exactly one value.
    if (!_next())
        return headerFailure("Unexpected end of file.");
    if (!_isEndOfSection())
        return headerFailure("Unexpected value for :version section.");
    if (version)
        *version = number;
    return true;
}

// -------------------------------------------------------------- sections

const Ka_ASFParser::Section* Ka_ASFParser::_sectionFor(const char* keyword,
                                                       bool internal)
{
    // clang-format off
    static const Section kSections[] = {
        {":name", &Ka_ASFParser::_readName, "Unable to read :name section.", false},
        {":units", &Ka_ASFParser::_readUnits, "Unable to read :units section.", false},
        {":documentation", &Ka_ASFParser::_readDocumentation, "Unable to read :documentation section.", false},
        {":dofgroups", &Ka_ASFParser::_readDOFGroups, "Unable to read :dofgroups section.", true},
        {":root", &Ka_ASFParser::_readRoot, "Unable to read :root section.", false},
        {":bonedata", &Ka_ASFParser::_readBoneData, "Unable to read :bonedata section.", false},
        {":hierarchy", &Ka_ASFParser::_readHierarchy, "Unable to read :hierarchy section.", false},
        {":skin", &Ka_ASFParser::_readSkin, "Unable to read :skin section.", false},
    };
    // clang-format on
    for (const Section& section : kSections)
        if (strcasecmp(keyword, section.keyword) == 0 &&
            (internal || !section.internalOnly))
            return &section;
    return nullptr;
}

// Sections may come in any order and may repeat. The document is left
// cleared at the first failure.
void Ka_ASFParser::read()
{
    int internal = 0;
    float version = 0.0f;
    if (!readHeader(&internal, &version))
    {
        _document->_clear();
        return;
    }
    _document->header().asfInternal = internal;
    _document->header().version = version;
    _internal = internal != 0;
    while (_next())
    {
        const Section* section = _sectionFor(_token, _internal);
        if (!section)
        {
            _fail("Unknown keyword '%s' encountered.", _token);
            _document->_clear();
            return;
        }
        if (!(this->*section->read)())
        {
            KtError("%s", section->failure);
            _document->_clear();
            return;
        }
    }
    if (!_checkHierarchy())
    {
        KtError("Unable to read :hierarchy section.");
        _document->_clear();
        return;
    }
    _assignMissingIds();
    _storeSkinFiles();
}

// An empty section leaves the name empty; the end of the file ends the
// section like the next section keyword.
bool Ka_ASFParser::_readName()
{
    KaASFHeader& header = _document->header();
    if (!_next() || _isEndOfSection())
    {
        header.name = "";
        return true;
    }
    if (std::strlen(_token) > kNameLimit)
        _warn(":name data exceeds limit of 50 characters.");
    header.name = _token;
    if (!_next() || _isEndOfSection())
        return true;
    return _fail("Unexpected data '%s' encountered for :name section.", _token);
}

// The length factor divides the bone lengths read after it; the mass factor
// is only kept.
bool Ka_ASFParser::_readUnits()
{
    KaASFHeader& header = _document->header();
    bool mass = false;
    bool length = false;
    bool angle = false;
    while (_next() && !_isEndOfSection())
    {
        if (_is("mass"))
        {
            if (mass)
                return _fail("Duplicate mass specification in :units section.");
            if (!_readFloat(&header.massFactor))
                return _fail("Unable to read mass data in :units section.");
            mass = true;
        }
        else if (_is("length"))
        {
            if (length)
                return _fail(
                    "Duplicate length specification in :units section.");
            if (!_readFloat(&header.lengthFactor))
                return _fail("Unable to read length data in :units section.");
            length = true;
        }
        else if (_is("angle"))
        {
            if (angle)
                return _fail(
                    "Duplicate angle specification in :units section.");
            _next();
            if (_is("rad"))
                header.angleUnit = 0;
            else if (_is("deg"))
                header.angleUnit = 1;
            else
                return _fail("Illegal value for angle.");
            angle = true;
        }
        else
            return _fail("Unexpected '%s' in :units section.", _token);
    }
    return true;
}

// The words are joined by one blank each and every line end is kept, so a
// word that starts a line follows its "\n" and a blank. Comments and
// separators are gone by then.
bool Ka_ASFParser::_readDocumentation()
{
    KaASFHeader& header = _document->header();
    if (!_next() || _isEndOfSection())
    {
        header.documentation = "";
        return true;
    }
    std::string text = _token;
    while (_nextInLine() && !_isEndOfSection())
    {
        if (_isEndOfLine())
        {
            text += '\n';
            continue;
        }
        text += ' ';
        text += _token;
    }
    KtStr documentation(text.c_str());
    documentation.trimRight();
    header.documentation = documentation;
    return true;
}

// Every :skin section adds to the names, which are stored once when the
// file is read, so many sections or long lists cost no more than their
// length.
bool Ka_ASFParser::_readSkin()
{
    while (_next() && !_isEndOfSection())
        _skinFiles.emplace_back(_token);
    return true;
}

void Ka_ASFParser::_storeSkinFiles()
{
    KtDArray<KtStr> names(static_cast<int>(_skinFiles.size()));
    for (int i = 0; i < names.count(); ++i)
        names[i] = _skinFiles[i];
    _document->setSkinFiles(names);
}

// ------------------------------------------------------------------ root

bool Ka_ASFParser::_readRoot()
{
    RootState given;
    for (;;)
    {
        if (!_next())
            return _fail("Unexpected end of input.");
        if (_isEndOfSection())
            return true;
        bool read;
        if (_is("axis"))
            read = _readRootAxis(&given);
        else if (_is("order"))
            read = _readRootOrder(&given);
        else if (_is("position"))
            read = _readRootPosition(&given);
        else if (_is("orientation"))
            read = _readRootOrientation(&given);
        else
            read =
                _fail("Unexpected '%s' encountered in :root section.", _token);
        if (!read)
            return false;
    }
}

bool Ka_ASFParser::_readRootAxis(RootState* given)
{
    if (given->axis)
        return _fail("Duplicate axis keyword in :root section.");
    _next();
    KtArray<int> order;
    if (!KaAxisOrderFromWord(_token, &order))
        return _fail("Unable to read sequence.");
    _document->root().setAxisOrder(order);
    given->axis = true;
    return true;
}

// The word that ended the list is the next keyword.
bool Ka_ASFParser::_readRootOrder(RootState* given)
{
    if (given->order)
        return _fail("Duplicate order keyword in :root section.");
    KaASFDOFGroup order;
    if (!_readDOFList(&order))
    {
        KtError("Unable to read order in :root section.");
        return false;
    }
    _document->root().dofGroup().setDOFs(order.dofs());
    given->order = true;
    return true;
}

// Positions are kept as written: the length unit does not apply.
bool Ka_ASFParser::_readRootPosition(RootState* given)
{
    if (given->position)
        return _fail("Duplicate position keyword in :root section.");
    float values[kPointSize];
    if (!_readFloats(
            values, kPointSize, "Invalid value for position in :root section."))
        return false;
    _document->root().setPosition(KtPoint(values[0], values[1], values[2]));
    given->position = true;
    return true;
}

bool Ka_ASFParser::_readRootOrientation(RootState* given)
{
    if (given->orientation)
        return _fail("Duplicate orientation keyword in :root section.");
    float values[kPointSize];
    if (!_readFloats(values,
                     kPointSize,
                     "Invalid value for orientation in :root section."))
        return false;
    _document->root().setAxisOrient(
        KtPoint(_radians(values[0]), _radians(values[1]), _radians(values[2])));
    given->orientation = true;
    return true;
}
