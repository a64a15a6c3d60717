// Ka_ASFParser: the skeleton reader's parser and its state; included only by
// the reader's own sources, everything else reads through asf/KaASFReader.h.
#pragma once

#include <cstdarg>
#include <iosfwd>
#include <unordered_map>
#include <vector>

#include "asf/ASFTokenizer.h"
#include "toolkit/KtNameIndex.h"
#include "toolkit/KtStr.h"

class KaASF;
class KaASFBone;
class KaASFDOFGroup;

// One pass over one stream; the failures it records are those described in
// asf/KaASFReader.h. Its parts: the core (tokens, messages, numbers, the
// header and the short sections, the root) in Ka_ASFParser.cpp, the bone and
// DOF-group blocks with their DOF and limit lists in Ka_ASFParserBlocks.cpp,
// and the hierarchy in Ka_ASFParserHierarchy.cpp.
class Ka_ASFParser
{
public:
    // The document may be null when only the header is checked.
    Ka_ASFParser(std::istream& in, KaASF* document);

    // Whether the stream begins with a valid header (":asf-internal",
    // ":version"); either output may be null.
    bool readHeader(int* internalFlag, float* version);
    // The header, every section, and at the end the missing bone ids.
    void read();

private:
    struct BlockState;
    struct BoneBlock;
    struct GroupBlock;
    struct RootState;
    struct HierarchyState;
    struct Section;
    struct ParentAssignment
    {
        int line = 0;
        long order = 0;
    };

    static const Section* _sectionFor(const char* keyword, bool internal);

    // Tokens. _next and _nextInLine read the next token (or take back the
    // one held) and return false at the end of the input.
    bool _next();
    bool _nextInLine();
    void _hold() { _held = true; }
    bool _atEnd() const;
    bool _is(const char* keyword) const;
    bool _isEndOfSection() const;
    bool _isEndOfLine() const;

    // Messages with the "Line %d:  " prefix; _fail returns false.
    bool _fail(const char* format, ...) __attribute__((format(printf, 2, 3)));
    bool _failAtLine(int line, const char* format, ...)
        __attribute__((format(printf, 3, 4)));
    void _warn(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void _raise(bool warning, int line, const char* format, va_list args);

    // Numbers from the next token; "Invalid number." when none converts.
    bool _readFloat(float* value);
    bool _readInt(int* value);
    bool _readFloats(float* values, int count, const char* invalidMessage);
    bool _limitValue(float* value) const;
    float _radians(float angle) const;

    bool _readName();
    bool _readUnits();
    bool _readDocumentation();
    bool _readSkin();
    void _storeSkinFiles();

    bool _readRoot();
    bool _readRootAxis(RootState* given);
    bool _readRootOrder(RootState* given);
    bool _readRootPosition(RootState* given);
    bool _readRootOrientation(RootState* given);

    bool _readBoneData();
    bool _readDOFGroups();
    template <class Block>
    bool _readBlocks();
    bool _finish(BoneBlock& block);
    bool _finish(GroupBlock& block);
    bool _readKeyword(BoneBlock& block);
    bool _readKeyword(GroupBlock& block);
    bool _readBoneId(BoneBlock& block);
    bool _readBoneName(BoneBlock& block);
    bool _checkBoneData(const BoneBlock& block,
                        bool given,
                        const char* beforeName,
                        const char* duplicate);
    bool _readBoneDirection(BoneBlock& block);
    bool _readBoneLength(BoneBlock& block);
    bool _readBoneAxis(BoneBlock& block);
    bool _readBoneBodyMass(BoneBlock& block);
    bool _readBoneCofMass(BoneBlock& block);
    bool _readBoneDOFs(BoneBlock& block);
    bool _readBoneLimits(BoneBlock& block);
    bool _checkDOFKeyword(const BlockState& state, const char* section);
    bool _checkLimitsKeyword(const BlockState& state, const char* section);

    bool _readDOFList(KaASFDOFGroup* list);
    bool _readGroupSelection(KaASFDOFGroup* list, KaASFDOFGroup* group);
    bool _roomFor(const KaASFDOFGroup* list, int count);
    bool _readLimitsList(KaASFDOFGroup* list, const char* section);

    bool _readHierarchy();
    bool _readHierarchyHead(HierarchyState* state);
    bool _readHierarchyChild(HierarchyState* state);
    KaASFBone* _boneNamedByToken();
    bool _checkHierarchy();
    bool _refuseCycleThrough(const KaASFBone* bone);
    void _assignMissingIds();

    // Tokens are at most 80 characters; longer words are split.
    static constexpr int kTokenSize = 81;
    // Long sections give the user a chance to cancel after this many bones,
    // groups or hierarchy links.
    static constexpr int kPollEvery = 10;
    static constexpr int kPointSize = 3;

    ASFTokenizer _tokenizer;
    KaASF* _document;
    char _token[kTokenSize] = "";
    bool _held = false;
    // Only internal files may refer to named DOF groups.
    bool _internal = false;
    // DOF lists find groups by name ignoring case.
    KtNameIndex<KaASFDOFGroup> _groupsByName;
    // Where each parent link was last set, to name the line that closed a
    // circle in the hierarchy.
    std::unordered_map<const KaASFBone*, ParentAssignment> _parentSetAt;
    long _assignments = 0;
    std::vector<KtStr> _skinFiles;
};
