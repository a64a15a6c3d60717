// Reading skeleton files: KaASFReader's section readers and the reading
// members of KaASF.
#include "asf/KaASFReader.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>
#include <strings.h>
#include <unordered_set>
#include <vector>

#include "asf/KaASF.h"
#include "asf/KaAxisOrder.h"
#include "toolkit/KtCancelHandler.h"
#include "toolkit/KtCompStream.h"
#include "toolkit/KtError.h"

namespace
{

// Long sections give the user a chance to cancel after this many bones,
// groups or hierarchy links.
constexpr int kPollEvery = 10;
// Longer skeleton names are kept, with a warning.
constexpr size_t kNameLimit = 50;
// Channels are named once each, so real lists hold at most seven DOFs. Only
// references to groups can repeat a channel, and this cap keeps such repeats
// from multiplying through groups that refer to groups.
constexpr int kMaxDOFsInList = 16;
// Degrees to radians, in double precision; each result is stored as float.
constexpr double kRadiansPerDegree = 0.017453292519943295;
constexpr int kPointSize = 3;
constexpr size_t kDrainChunk = 1024;

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

// What one begin ... end block has given so far.
struct KaASFReader::BlockState
{
    bool name = false;
    bool dof = false;
    bool limits = false;
};

struct KaASFReader::BoneBlock : BlockState
{
    static constexpr const char* kSection = ":bonedata";

    KaASFBone bone;
    bool id = false;
    bool direction = false;
    bool length = false;
    bool axis = false;
    bool bodyMass = false;
    bool cofMass = false;
    // Once set, "id" and "name" are refused: they must come first.
    bool ordered = false;
};

struct KaASFReader::GroupBlock : BlockState
{
    static constexpr const char* kSection = ":dofgroups";

    KaASFDOFGroup group;
};

struct KaASFReader::RootState
{
    bool axis = false;
    bool order = false;
    bool position = false;
    bool orientation = false;
};

struct KaASFReader::HierarchyState
{
    KaASFBone* parent = nullptr; // null: the root
    bool firstChildArmed = true;
    bool done = false;
    int children = 0;
};

struct KaASFReader::Section
{
    const char* keyword;
    bool (KaASFReader::*read)();
    const char* failure;
    bool internalOnly;
};

KaASFReader::KaASFReader(std::istream& in, KaASF* document)
    : _tokenizer(in)
    , _document(document)
{
}

// ---------------------------------------------------------------- tokens

bool KaASFReader::_next()
{
    if (_held)
        _held = false;
    else
        _tokenizer.getNextNonEOLToken(_token, kTokenSize);
    return !_atEnd();
}

bool KaASFReader::_nextInLine()
{
    if (_held)
        _held = false;
    else
        _tokenizer.getNextToken(_token, kTokenSize);
    return !_atEnd();
}

// A word that the end of the file cuts short is still a word; the input has
// ended only when nothing more could be read.
bool KaASFReader::_atEnd() const
{
    return _token[0] == '\0' && !_tokenizer.good();
}

bool KaASFReader::_is(const char* keyword) const
{
    return strcasecmp(_token, keyword) == 0;
}

bool KaASFReader::_isEndOfSection() const
{
    return std::strcmp(_token, ASFTokenizer::kEndOfSection) == 0;
}

bool KaASFReader::_isEndOfLine() const
{
    return std::strcmp(_token, ASFTokenizer::kEndOfLine) == 0;
}

// -------------------------------------------------------------- messages

void KaASFReader::_raise(bool warning,
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

bool KaASFReader::_fail(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    _raise(false, _tokenizer.lineNumber(), format, args);
    va_end(args);
    return false;
}

bool KaASFReader::_failAtLine(int line, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    _raise(false, line, format, args);
    va_end(args);
    return false;
}

void KaASFReader::_warn(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    _raise(true, _tokenizer.lineNumber(), format, args);
    va_end(args);
}

// --------------------------------------------------------------- numbers

bool KaASFReader::_readFloat(float* value)
{
    _next();
    if (convertFloat(_token, value))
        return true;
    KtError("Invalid number.");
    return false;
}

bool KaASFReader::_readInt(int* value)
{
    _next();
    if (convertInt(_token, value))
        return true;
    KtError("Invalid number.");
    return false;
}

bool KaASFReader::_readFloats(float* values,
                              int count,
                              const char* invalidMessage)
{
    for (int i = 0; i < count; ++i)
        if (!_readFloat(&values[i]))
            return _fail("%s", invalidMessage);
    return true;
}

// The current token as one end of a limit: "inf", "-inf" or a number.
bool KaASFReader::_limitValue(float* value) const
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
float KaASFReader::_radians(float angle) const
{
    if (_document->header().angleUnit != 1)
        return angle;
    return static_cast<float>(angle * kRadiansPerDegree);
}

// ---------------------------------------------------------------- header

bool KaASFReader::readHeader(int* internalFlag, float* version)
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

const KaASFReader::Section* KaASFReader::_sectionFor(const char* keyword,
                                                     bool internal)
{
    // clang-format off
    static const Section kSections[] = {
        {":name", &KaASFReader::_readName, "Unable to read :name section.", false},
        {":units", &KaASFReader::_readUnits, "Unable to read :units section.", false},
        {":documentation", &KaASFReader::_readDocumentation, "Unable to read :documentation section.", false},
        {":dofgroups", &KaASFReader::_readDOFGroups, "Unable to read :dofgroups section.", true},
        {":root", &KaASFReader::_readRoot, "Unable to read :root section.", false},
        {":bonedata", &KaASFReader::_readBoneData, "Unable to read :bonedata section.", false},
        {":hierarchy", &KaASFReader::_readHierarchy, "Unable to read :hierarchy section.", false},
        {":skin", &KaASFReader::_readSkin, "Unable to read :skin section.", false},
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
void KaASFReader::read()
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
bool KaASFReader::_readName()
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
bool KaASFReader::_readUnits()
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
bool KaASFReader::_readDocumentation()
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
bool KaASFReader::_readSkin()
{
    while (_next() && !_isEndOfSection())
        _skinFiles.emplace_back(_token);
    return true;
}

void KaASFReader::_storeSkinFiles()
{
    KtDArray<KtStr> names(static_cast<int>(_skinFiles.size()));
    for (int i = 0; i < names.count(); ++i)
        names[i] = _skinFiles[i];
    _document->setSkinFiles(names);
}

// ------------------------------------------------------------------ root

bool KaASFReader::_readRoot()
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

bool KaASFReader::_readRootAxis(RootState* given)
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
bool KaASFReader::_readRootOrder(RootState* given)
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
bool KaASFReader::_readRootPosition(RootState* given)
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

bool KaASFReader::_readRootOrientation(RootState* given)
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

// ---------------------------------------------------- bone and group blocks

bool KaASFReader::_readBoneData()
{
    return _readBlocks<BoneBlock>();
}

bool KaASFReader::_readDOFGroups()
{
    return _readBlocks<GroupBlock>();
}

// The begin ... end structure shared by :bonedata and :dofgroups. The end
// of the file ends the section like the next section keyword.
template <class Block>
bool KaASFReader::_readBlocks()
{
    const char* section = Block::kSection;
    Block block;
    bool inBlock = false;
    int finished = 0;
    for (;;)
    {
        if (!_next() || _isEndOfSection())
        {
            if (inBlock)
                return _fail("Expected 'end' keyword in %s section.", section);
            return true;
        }
        if (_is("begin"))
        {
            if (inBlock)
                return _fail("Expected 'end' keyword in %s section.", section);
            block = Block();
            inBlock = true;
        }
        else if (_is("end"))
        {
            if (!inBlock)
                return _fail("Unexpected 'end' encountered in %s section.",
                             section);
            if (!_finish(block))
                return false;
            inBlock = false;
            if (++finished % kPollEvery == 0 && KtCancelHandler::checkCancel())
                return false;
        }
        else if (!inBlock)
            return _fail(
                "Data specified outside of begin/end pair in %s section.",
                section);
        else if (!_readKeyword(block))
            return false;
    }
}

bool KaASFReader::_finish(BoneBlock& block)
{
    if (!block.name)
        return _fail("Name undefined in :bonedata section.");
    if (!block.direction)
        return _fail("Direction undefined in :bonedata section.");
    if (!block.length)
        return _fail("Length undefined in :bonedata section.");
    if (!block.axis)
        return _fail("Axis undefined in :bonedata section.");
    _document->addBone(block.bone);
    return true;
}

bool KaASFReader::_finish(GroupBlock& block)
{
    if (!block.name)
        return _fail("Name undefined in :dofgroups section.");
    KaASFDOFGroup* group = _document->addDOFGroup(block.group);
    _groupsByName.add(group->name(), group);
    return true;
}

// "id" and "name" must come first: once a direction is given (or, after
// "limits", any of direction, length, axis, cofmass, dof or limits) they are
// refused. Body mass deliberately does not count.
bool KaASFReader::_readKeyword(BoneBlock& block)
{
    using Reader = bool (KaASFReader::*)(BoneBlock&);
    static const struct
    {
        const char* keyword;
        Reader read;
    } kKeywords[] = {
        {"id", &KaASFReader::_readBoneId},
        {"name", &KaASFReader::_readBoneName},
        {"direction", &KaASFReader::_readBoneDirection},
        {"length", &KaASFReader::_readBoneLength},
        {"axis", &KaASFReader::_readBoneAxis},
        {"bodymass", &KaASFReader::_readBoneBodyMass},
        {"cofmass", &KaASFReader::_readBoneCofMass},
        {"dof", &KaASFReader::_readBoneDOFs},
        {"limits", &KaASFReader::_readBoneLimits},
    };
    for (const auto& entry : kKeywords)
    {
        if (!_is(entry.keyword))
            continue;
        if (!(this->*entry.read)(block))
            return false;
        if (entry.read == &KaASFReader::_readBoneLimits)
            block.ordered = block.direction || block.length || block.axis ||
                            block.cofMass || block.dof || block.limits;
        else
            block.ordered = block.direction;
        return true;
    }
    return _fail("Unexpected '%s' encountered in :bonedata section.", _token);
}

bool KaASFReader::_readBoneId(BoneBlock& block)
{
    if (block.ordered)
        return _fail("Id must come before all other data except name in "
                     ":bonedata section.");
    if (block.id)
        return _fail("Duplicate id specification in :bonedata section.");
    int id = 0;
    if (!_readInt(&id))
        return _fail("Invalid value for 'id' in :bonedata section.");
    block.bone.setId(id);
    block.id = true;
    return true;
}

bool KaASFReader::_readBoneName(BoneBlock& block)
{
    if (block.ordered)
        return _fail(
            "Name must come before all other except id in :bonedata section.");
    if (block.name)
        return _fail("Duplicate name specification in :bonedata section.");
    _next();
    block.bone.setName(_token);
    block.name = true;
    return true;
}

// The checks shared by the data that must follow the name.
bool KaASFReader::_checkBoneData(const BoneBlock& block,
                                 bool given,
                                 const char* beforeName,
                                 const char* duplicate)
{
    if (!block.name)
        return _fail("%s", beforeName);
    if (given)
        return _fail("%s", duplicate);
    return true;
}

bool KaASFReader::_readBoneDirection(BoneBlock& block)
{
    float values[kPointSize];
    if (!_checkBoneData(
            block,
            block.direction,
            "Direction specification defined before name in :bonedata "
            "section.",
            "Duplicate direction specification in :bonedata section.") ||
        !_readFloats(values,
                     kPointSize,
                     "Invalid value for direction in :bonedata section."))
        return false;
    block.bone.setDirection(KtPoint(values[0], values[1], values[2]));
    block.direction = true;
    return true;
}

// The length is held in the skeleton's length unit.
bool KaASFReader::_readBoneLength(BoneBlock& block)
{
    float length = 0.0f;
    if (!_checkBoneData(
            block,
            block.length,
            "Length specification defined before name in :bonedata section.",
            "Duplicate length specification in :bonedata section.") ||
        !_readFloats(
            &length, 1, "Invalid value for length in :bonedata section."))
        return false;
    block.bone.setLength(length / _document->header().lengthFactor);
    block.length = true;
    return true;
}

bool KaASFReader::_readBoneAxis(BoneBlock& block)
{
    float values[kPointSize];
    if (!_checkBoneData(block,
                        block.axis,
                        "Axis defined before name in :bonedata section.",
                        "Duplicate axis specification in :bonedata section.") ||
        !_readFloats(
            values, kPointSize, "Invalid value for axis in :bonedata section."))
        return false;
    KtArray<float> angles(kPointSize);
    for (int i = 0; i < kPointSize; ++i)
        angles[i] = _radians(values[i]);
    _next();
    KtArray<int> order;
    if (!KaAxisOrderFromWord(_token, &order))
        return _fail("Unable to read sequence.");
    block.bone.setAxis(angles);
    block.bone.setAxisOrder(order);
    block.axis = true;
    return true;
}

bool KaASFReader::_readBoneBodyMass(BoneBlock& block)
{
    float mass = 0.0f;
    if (!_checkBoneData(
            block,
            block.bodyMass,
            "Bodymass defined before name in :bonedata section.",
            "Duplicate bodymass specification in :bonedata section.") ||
        !_readFloats(
            &mass, 1, "Invalid value for bodymass in :bonedata section."))
        return false;
    block.bone.setBodyMass(mass);
    block.bodyMass = true;
    return true;
}

bool KaASFReader::_readBoneCofMass(BoneBlock& block)
{
    float value = 0.0f;
    if (!_checkBoneData(
            block,
            block.cofMass,
            "Cofmass defined before name in :bonedata section.",
            "Duplicate cofmass specification in :bonedata section.") ||
        !_readFloats(
            &value, 1, "Invalid value for cofmass in :bonedata section."))
        return false;
    block.bone.setCofMass(value);
    block.cofMass = true;
    return true;
}

// The list's failure message carries no line prefix: the list's own message
// under it already has one.
bool KaASFReader::_readBoneDOFs(BoneBlock& block)
{
    if (!_checkDOFKeyword(block, BoneBlock::kSection))
        return false;
    if (!_readDOFList(&block.bone.dofGroup()))
    {
        KtError("Unable to read dof in :bonedata section.");
        return false;
    }
    block.dof = true;
    return true;
}

bool KaASFReader::_readBoneLimits(BoneBlock& block)
{
    if (!_checkLimitsKeyword(block, BoneBlock::kSection) ||
        !_readLimitsList(&block.bone.dofGroup(), BoneBlock::kSection))
        return false;
    block.limits = true;
    return true;
}

bool KaASFReader::_readKeyword(GroupBlock& block)
{
    if (_is("name"))
    {
        if (block.name)
            return _fail("Duplicate name specification in :dofgroups section.");
        _next();
        block.group.setName(_token);
        block.name = true;
    }
    else if (_is("dof"))
    {
        if (!_checkDOFKeyword(block, GroupBlock::kSection))
            return false;
        if (!_readDOFList(&block.group))
            return _fail("Unable to read dof in :dofgroups section.");
        block.dof = true;
    }
    else if (_is("limits"))
    {
        if (!_checkLimitsKeyword(block, GroupBlock::kSection) ||
            !_readLimitsList(&block.group, GroupBlock::kSection))
            return false;
        block.limits = true;
    }
    else
        return _fail("Unexpected '%s' encountered in :dofgroups section.",
                     _token);
    return true;
}

bool KaASFReader::_checkDOFKeyword(const BlockState& state, const char* section)
{
    if (state.limits)
        return _fail("Limits defined before dof in %s section.", section);
    if (!state.name)
        return _fail("Dof defined before name in %s section.", section);
    if (state.dof)
        return _fail("Duplicate dof specification in %s section.", section);
    return true;
}

bool KaASFReader::_checkLimitsKeyword(const BlockState& state,
                                      const char* section)
{
    if (!state.dof)
        return _fail("Limits defined without the definition of dof in %s "
                     "section.",
                     section);
    if (!state.name)
        return _fail("Limits defined before name in %s section.", section);
    if (state.limits)
        return _fail("Duplicate limits specification in %s section.", section);
    return true;
}

// ------------------------------------------------------- DOF and limit lists

// DOF names, and in internal files names of groups (ignoring case): a group
// name alone stands for all the group's DOFs, "group < rx ry >" for some of
// them; those DOFs take their limits from the group. The word that ends the
// list is held for the caller.
bool KaASFReader::_readDOFList(KaASFDOFGroup* list)
{
    bool reexamine = false;
    for (;;)
    {
        if (!reexamine)
            _next();
        reexamine = false;
        if (_atEnd())
            break;
        int code = KaDOFCodeOfName(_token);
        if (code != kDofInvalid)
        {
            if (list->hasDOF(code))
                return _fail("Dof '%s' specified more than once.",
                             KaDOFNameOfCode(code).text());
            if (!_roomFor(list, 1))
                return false;
            list->addDOF(code);
            continue;
        }
        KaASFDOFGroup* group = _internal ? _groupsByName.find(_token) : nullptr;
        if (!group)
            break;
        if (_next() && std::strcmp(_token, "<") == 0)
        {
            if (!_readGroupSelection(list, group))
                return false;
            continue;
        }
        // The whole group, without the check for repeats; the word after
        // the group name is examined again.
        if (!_roomFor(list, group->numDOFs()))
            return false;
        for (const KaASFDOF* dof : group->dofs())
            list->addDOF(KaASFDOF(dof->code(), group));
        reexamine = true;
    }
    _hold();
    return true;
}

bool KaASFReader::_readGroupSelection(KaASFDOFGroup* list, KaASFDOFGroup* group)
{
    while (_next())
    {
        if (std::strcmp(_token, ">") == 0)
        {
            // The test is on the whole list, so an empty "< >" after other
            // DOFs passes.
            if (list->numDOFs() == 0)
                return _fail("No dof specified within < >.");
            return true;
        }
        int code = KaDOFCodeOfName(_token);
        if (code == kDofInvalid)
            return _fail("Unexpected '%s' encountered.", _token);
        if (!group->hasDOF(code))
            return _fail("Dofgroup '%s' does not contain dof '%s'.",
                         group->name().text(),
                         KaDOFNameOfCode(code).text());
        if (!_roomFor(list, 1))
            return false;
        list->addDOF(KaASFDOF(code, group));
    }
    return _fail("Unexpected end of input.");
}

bool KaASFReader::_roomFor(const KaASFDOFGroup* list, int count)
{
    if (list->numDOFs() + count <= kMaxDOFsInList)
        return true;
    return _fail("Too many dofs specified (at most %d).", kMaxDOFsInList);
}

// Pairs of lower and upper limits for the list's own DOFs in order (DOFs
// that refer to a group take the group's limits and get no pair). The list
// ends at the first word that is no number; fewer pairs than DOFs leave the
// rest unlimited. Infinite limits are converted from degrees like any other
// (deliberately no special case).
bool KaASFReader::_readLimitsList(KaASFDOFGroup* list, const char* section)
{
    auto target = list->dofs().begin();
    const auto end = list->dofs().end();
    for (;;)
    {
        float lower = 0.0f;
        float upper = 0.0f;
        if (!_next() || !_limitValue(&lower))
        {
            _hold();
            return true;
        }
        if (!_next() || !_limitValue(&upper))
        {
            KtError("Invalid number.");
            return _fail("Invalid value for upper limit in %s section.",
                         section);
        }
        if (upper < lower)
            return _fail("Lower limit greater than upper limit in %s section.",
                         section);
        while (target != end && (*target)->group())
            ++target;
        if (!(target != end))
            return _fail("Too many limits specified in %s section.", section);
        KaASFDOF* dof = *target;
        ++target;
        if (dof->isRotation())
        {
            lower = _radians(lower);
            upper = _radians(upper);
        }
        dof->setLimits(KaASFLimits{lower, upper});
    }
}

// ------------------------------------------------------------- hierarchy

// Each line names a parent ("root" or a bone) and then its children; the
// words on the "begin" line itself hang from the root. The first child
// named after a bone becomes that bone's first child.
bool KaASFReader::_readHierarchy()
{
    if (!_next())
        return _fail("Unexpected end of input.");
    if (!_is("begin"))
        return _fail(
            "Expected 'begin' keyword in :hierarchy section, got '%s'.",
            _token);
    HierarchyState state;
    bool atLineStart = false;
    for (;;)
    {
        if (!_nextInLine())
            return _fail("Unexpected end of input.");
        if (_isEndOfLine())
        {
            atLineStart = true;
            continue;
        }
        bool read = atLineStart ? _readHierarchyHead(&state)
                                : _readHierarchyChild(&state);
        if (!read || state.done)
            return read;
        atLineStart = false;
    }
}

bool KaASFReader::_readHierarchyHead(HierarchyState* state)
{
    if (_is("end"))
    {
        state->done = true;
        if (!_next() || _isEndOfSection())
            return true;
        return _fail("Unexpected '%s' encountered after :hierarchy section.",
                     _token);
    }
    if (_isEndOfSection())
        return _fail("Expected 'end' keyword in :hierarchy section.");
    state->parent = nullptr;
    if (!_is("root") && !(state->parent = _boneNamedByToken()))
        return false;
    state->firstChildArmed = true;
    return true;
}

// The word "root" among the children (exact case) is skipped.
bool KaASFReader::_readHierarchyChild(HierarchyState* state)
{
    if (std::strcmp(_token, "root") == 0)
        return true;
    KaASFBone* child = _boneNamedByToken();
    if (!child)
        return false;
    child->setParent(state->parent);
    _parentSetAt[child] = {_tokenizer.lineNumber(), ++_assignments};
    if (state->parent && state->firstChildArmed)
    {
        state->parent->setFirstChild(child);
        state->firstChildArmed = false;
    }
    if (++state->children % kPollEvery == 0 && KtCancelHandler::checkCancel())
        return false;
    return true;
}

KaASFBone* KaASFReader::_boneNamedByToken()
{
    KaASFBone* bone = _document->findBone(_token);
    if (!bone)
        _fail("Unable to find bone '%s'.", _token);
    return bone;
}

// Everything that walks the hierarchy relies on reaching the root, so no
// bone may be its own ancestor. Checked once, when the whole file is read
// (later lines may still move a bone), in time linear in the number of
// bones: each bone is walked over once.
bool KaASFReader::_checkHierarchy()
{
    std::unordered_map<const KaASFBone*, int> walkThatReached;
    int walk = 0;
    for (const KaASFBone* start : _document->bones())
    {
        ++walk;
        const KaASFBone* bone = start;
        while (bone && walkThatReached.emplace(bone, walk).second)
            bone = bone->parent();
        if (bone && walkThatReached[bone] == walk)
            return _refuseCycleThrough(bone);
    }
    return true;
}

// Names the bone of the circle whose parent link was set last: that line
// closed the circle.
bool KaASFReader::_refuseCycleThrough(const KaASFBone* bone)
{
    const KaASFBone* latest = bone;
    const KaASFBone* member = bone;
    do
    {
        if (_parentSetAt[member].order > _parentSetAt[latest].order)
            latest = member;
        member = member->parent();
    } while (member != bone);
    return _failAtLine(_parentSetAt[latest].line,
                       "Bone '%s' cannot be its own ancestor.",
                       latest->name().text());
}

// In bone-list order, a bone without an id (0) takes the smallest positive
// id that no bone holds at that moment, and an id of -1 becomes 0. The
// smallest free id only grows as ids are handed out, so one pass suffices.
void KaASFReader::_assignMissingIds()
{
    std::unordered_set<int> held;
    for (const KaASFBone* bone : _document->bones())
        if (bone->id() > 0)
            held.insert(bone->id());
    int candidate = 1;
    for (KaASFBone* bone : _document->bones())
    {
        if (bone->id() == 0)
        {
            while (held.count(candidate))
                ++candidate;
            bone->setId(candidate);
            held.insert(candidate);
        }
        else if (bone->id() == -1)
            bone->setId(0);
    }
}

// ------------------------------------------------------ KaASF entry points

// A new read starts from an empty document, so nothing of an earlier file
// (its units, say) carries over.
void KaASF::scanFrom(std::istream& in)
{
    _clear();
    _header = KaASFHeader();
    _root = KaASFRoot();
    KaASFReader reader(in, this);
    reader.read();
}

void KaASF::read(const char* path)
{
    if (!path)
        path = "";
    KtCompIFStream in;
    in.open(path);
    if (!in.good() || theExceptObj.errorOccurred())
    {
        // The stream records why it failed; a failure is never silent.
        if (!theExceptObj.errorOccurred())
            KtError("Unable to open '%s'.", path);
        _clear();
        return;
    }
    scanFrom(in);
    // A decompression command that failed has cut the text short, though
    // what came through may read as a whole skeleton.
    in.close();
    if (!theExceptObj.errorOccurred())
        return;
    _clear();
    KtError("Unable to read '%s'.", path);
}

int KaASF::streamContainsASF(std::istream& in,
                             int* internalFlag,
                             float* version)
{
    KaASFReader reader(in, nullptr);
    return reader.readHeader(internalFlag, version) ? 1 : 0;
}

// A decompressing command must be able to write all its output before the
// stream closes, so a compressed file is read to its end.
int KaASF::fileContainsASF(const char* path)
{
    if (!path)
        path = "";
    KtCompIFStream in;
    in.open(path);
    if (!in.good())
    {
        KtError("Unable to open '%s'.", path);
        return 0;
    }
    if (!streamContainsASF(in, nullptr, nullptr))
    {
        KtError("Unable to read \"%s\".", path);
        return 0;
    }
    if (in.compressed())
    {
        char buffer[kDrainChunk];
        while (in.read(buffer, sizeof buffer))
        {
        }
    }
    return 1;
}
