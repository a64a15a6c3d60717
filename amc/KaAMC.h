// KaAMC: one motion document: frames (fields) of per-bone channel values.
#pragma once

#include <iosfwd>

#include "toolkit/KtGrowArray.h"
#include "toolkit/KtNameList.h"
#include "toolkit/KtStr.h"

class KaAMC;

// One bone line of a field: its values, in file order, and its name. A view
// into the motion that holds it: valid until the motion next changes.
class KaAMCBone
{
public:
    KaAMCBone() = default;

    // The first field's name at the bone's position; null for a bone past
    // the first field's count.
    const char* name() const;
    int numValues() const { return _count; }
    const float* values() const { return _values; }
    float value(int i) const { return _values[i]; }

    // "name v1 v2 ... " (every value followed by a blank).
    void printOn(std::ostream& out) const;

private:
    friend class KaAMCField;
    KaAMCBone(const KtNameList* names,
              int position,
              const float* values,
              int count)
        : _names(names)
        , _values(values)
        , _position(position)
        , _count(count)
    {
    }

    // The name is looked up only when asked for: most readers of a bone
    // want its values.
    const KtNameList* _names = nullptr;
    const float* _values = nullptr;
    int _position = 0;
    int _count = 0;
};

// One frame: its number as written and its bone lines in file order. A
// view into the motion, like KaAMCBone. Later fields take their names by
// position from the first field's.
class KaAMCField
{
public:
    int frameNumber() const;
    int numBones() const;
    KaAMCBone bone(int i) const;
    // The position of the first bone whose name equals name ignoring case,
    // -1 when none (bones past the first field's count have no name).
    int findBone(const char* name) const;

    void printOn(std::ostream& out) const;

private:
    friend class KaAMC;
    KaAMCField(const KaAMC* motion, int index)
        : _motion(motion)
        , _index(index)
    {
    }

    const KaAMC* _motion;
    int _index;
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
//
// A motion of millions of lines costs little more than its numbers: the
// first field's names are one name list, and the fields, their bone lines
// and the values are three plain tables for the whole motion (a field is
// its frame number and its first line, a line where its values end), read
// through the views KaAMCField and KaAMCBone.
class KaAMC
{
public:
    enum Mode_t
    {
        FULLY_SPECIFIED = 0
    };

    Mode_t mode() const { return _mode; }
    void setMode(Mode_t mode) { _mode = mode; }
    // 1 angles in degrees, 0 in radians.
    int units() const { return _units; }
    void setUnits(int units) { _units = units; }

    // The bone names in the order of the first field.
    const KtNameList& boneNames() const { return _boneNames; }
    // The first later field, as read, whose bone lines are not the first
    // field's in the same order: a name that differs ignoring case, or more
    // or fewer lines. Such a field is still read by position, as every field
    // is; this only tells. Emptied with the fields, and by setBoneNames.
    const KaAMCLineMismatch& lineMismatch() const { return _lineMismatch; }
    int numFields() const { return _fields.count(); }
    KaAMCField field(int i) const { return KaAMCField(this, i); }

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

    // Building in memory: the names, then each field with its bone lines.
    void setBoneNames(const KtNameList& names);
    void appendField(int frameNumber);
    // Appends a bone line to the last field.
    void appendBone(const float* values, int count);

    // Only a FULLY_SPECIFIED motion can be written; any other mode aborts.
    void printOn(std::ostream& out) const;
    // Success or failure is seen in the error handler only.
    void save(const char* path) const;

    // Empties the bone names and the fields.
    void _clear();

private:
    friend class KaAMCField;
    template <class Source>
    friend class KaAMCFieldReader;

    struct FieldRecord
    {
        int frameNumber;
        int firstBone;
    };

    void _scanFrom(std::istream& in, int maxFields);
    template <class Reader>
    void _scanFields(Reader& reader, int maxFields);
    // The field past the last one starts after the last line.
    int _firstBone(int field) const
    {
        return field < _fields.count() ? _fields[field].firstBone
                                       : _valueEnds.count();
    }
    int _valuesStart(int line) const
    {
        return line > 0 ? _valueEnds[line - 1] : 0;
    }

    Mode_t _mode = FULLY_SPECIFIED;
    int _units = 1;
    KtNameList _boneNames;
    KtGrowArray<FieldRecord> _fields;
    // Per bone line of the whole motion, where its values end in _values;
    // they start where the previous line's end.
    KtGrowArray<int> _valueEnds;
    KtGrowArray<float> _values;
    KaAMCLineMismatch _lineMismatch;
};

// Inline: every frame of a conversion reaches its values through these.
inline int KaAMCField::frameNumber() const
{
    return _motion->_fields[_index].frameNumber;
}

inline int KaAMCField::numBones() const
{
    return _motion->_firstBone(_index + 1) - _motion->_firstBone(_index);
}

inline KaAMCBone KaAMCField::bone(int i) const
{
    const int line = _motion->_firstBone(_index) + i;
    const int start = _motion->_valuesStart(line);
    return KaAMCBone(&_motion->_boneNames,
                     i,
                     _motion->_values.data() + start,
                     _motion->_valueEnds[line] - start);
}
