// KaAMC: one motion document: frames (fields) of per-bone channel values.
#pragma once

#include <iosfwd>

#include "toolkit/KtArray.h"
#include "toolkit/KtList.h"
#include "toolkit/KtStr.h"

// One bone's values in one field, in file order. The name is shared: it
// points into the motion's bone-name list and is not owned by the bone.
template <class Source>
class KaAMCFieldReader;

class KaAMCBone
{
public:
    KaAMCBone() = default;
    KaAMCBone(const KaAMCBone& other);
    KaAMCBone(KaAMCBone&& other) noexcept;
    KaAMCBone& operator=(const KaAMCBone& other);
    KaAMCBone& operator=(KaAMCBone&& other) noexcept;
    ~KaAMCBone();

    const KtStr* name() const { return _name; }
    void setName(const KtStr* name) { _name = name; }

    int numValues() const { return _count; }
    const float* values() const
    {
        return _count > kInlineValues ? _spilled() : _storage.inlineValues;
    }
    float value(int i) const { return values()[i]; }
    // Copies count values (none when count < 1); values may be this bone's
    // own.
    void setValues(const float* values, int count);

    // Reads the rest of the current line as values, up to the first text
    // that is not a number.
    void scanFrom(std::istream& in);
    // "name v1 v2 ... " (every value followed by a blank).
    void printOn(std::ostream& out) const;

private:
    // Most bone lines carry one to three rotations; those values live in the
    // bone itself, so a long motion costs little more than its numbers. A
    // longer line's values live in one heap block whose address is kept in
    // the same bytes.
    static constexpr int kInlineValues = 3;

    float* _spilled() const;
    void _release();

    const KtStr* _name = nullptr;
    int _count = 0;
    union Storage
    {
        float inlineValues[kInlineValues];
        unsigned char heapAddress[sizeof(float) * kInlineValues];
    } _storage = {};
};

// One frame: its number as written and its bones in line order.
class KaAMCField
{
public:
    KaAMCField() = default;

    int frameNumber() const { return _frameNumber; }
    void setFrameNumber(int frame) { _frameNumber = frame; }

    int numBones() const { return _bones.count(); }
    const KaAMCBone& bone(int i) const { return _bones[i]; }
    KaAMCBone& bone(int i) { return _bones[i]; }
    // First bone whose name equals name ignoring case, else null. Bones
    // without a name (past the first field's bone count) never match.
    const KaAMCBone* findBone(const char* name) const;
    // True when bone i is named by names[i] for every i that names holds and
    // the bones past them are unnamed, as after reading. findBone(name) is
    // then the bone at the first position of name in names, if the field
    // has a bone there: a lookup that needs no search.
    bool bonesNamedByPosition(const KtArray<KtStr>& names) const;

    // Reads one field; with names, stores each bone's name at its position.
    void scanFrom(std::istream& in);
    void scanFrom(std::istream& in, KtDArray<KtStr>* names);
    // Bone i takes names[i], for the bones this field has; bones past the
    // end of names are left without a name.
    void setBoneNamesPtr(const KtArray<KtStr>* names);

    void setNumBones(int n);
    void setBones(const KtArray<KaAMCBone>& bones);
    void setBones(const KtList<KaAMCBone>& bones);
    void printOn(std::ostream& out) const;

private:
    friend class KaAMC;
    // The reader, over a source of characters (KaAMCReader.cpp).
    template <class Source>
    friend class KaAMCFieldReader;

    const KtArray<KtStr>* _boneNames = nullptr;
    int _frameNumber = 0;
    KtDArray<KaAMCBone> _bones;
};

// Where the bone lines of a later field first part from the first field's.
struct KaAMCLineMismatch
{
    int field = -1; // the field's index; -1 when every field matches
    int line = -1;  // the position of the first line that differs
    // The field's name at that line; empty when the field ends before it.
    KtStr name;
};

// The document. Reading and writing report failures through the error
// handler (KtError) and return normally.
class KaAMC
{
public:
    enum Mode_t
    {
        FULLY_SPECIFIED = 0
    };

    KaAMC() = default;
    // Copies names and fields; the copied fields point at the copy's names.
    KaAMC(const KaAMC& other);
    KaAMC& operator=(const KaAMC& other);
    KaAMC(KaAMC&& other) noexcept;
    KaAMC& operator=(KaAMC&& other) noexcept;

    Mode_t mode() const { return _mode; }
    void setMode(Mode_t mode) { _mode = mode; }
    // 1 angles in degrees, 0 in radians.
    int units() const { return _units; }
    void setUnits(int units) { _units = units; }

    // The bone names in the order of the first field.
    const KtDArray<KtStr>& boneNames() const { return _boneNames; }
    // The first later field, as read, whose bone lines are not the first
    // field's in the same order: a name that differs ignoring case, or more
    // or fewer lines. Such a field is still read by position, as every field
    // is; this only tells. Emptied with the fields, and by setBoneNames and
    // setFields.
    const KaAMCLineMismatch& lineMismatch() const { return _lineMismatch; }
    int numFields() const { return _fields.count(); }
    const KaAMCField& field(int i) const { return _fields[i]; }
    KaAMCField& field(int i) { return _fields[i]; }

    // Reads and checks the header; each output may be null. Returns 1 when
    // the header is complete, else 0 with the reason in *message. Records
    // nothing in the error handler.
    static int streamContainsAMC(std::istream& in,
                                 int* units,
                                 Mode_t* mode,
                                 KtStr* message);
    static int fileContainsAMC(const char* path);

    // Reading opens the file through KtCompIFStream, so compressed motions
    // read transparently. A failed header leaves the document as it was; a
    // failure in the body empties it, unless it came at the end of the file.
    void read(const char* path);
    // The header and the first field only.
    void readFirstField(const char* path);
    // Reads to the end of the stream, taking its characters in large blocks:
    // after a failure the stream may stand past the text that failed.
    void scanFrom(std::istream& in);

    // Building in memory.
    void setBoneNames(const KtArray<KtStr>& names);
    void setBoneNames(const KtList<KtStr>& names);
    void setFields(const KtArray<KaAMCField>& fields);
    // Appends a field with one unnamed bone per bone name; the pointer stays
    // valid until the fields are next resized.
    KaAMCField* createField(int frameNumber);

    // Only a FULLY_SPECIFIED motion can be written; any other mode aborts.
    void printOn(std::ostream& out) const;
    // Success or failure is seen in the error handler only.
    void save(const char* path) const;

    // Empties the bone names and the fields.
    void _clear();

private:
    void _scanFrom(std::istream& in, int maxFields);
    template <class Reader>
    void _scanFields(Reader& reader, int maxFields);
    void _pointFieldsAtNames();

    Mode_t _mode = FULLY_SPECIFIED;
    int _units = 1;
    KtDArray<KtStr> _boneNames;
    KtDArray<KaAMCField> _fields;
    KaAMCLineMismatch _lineMismatch;
};
