// The CSV export. Columns: frame (the number as written), time (seconds from
// the first frame), then x, y, z of every body's start (the root's joint
// first, then the bones in skeleton order), then of every leaf bone's end.
#include "motexport/CsvWriter.h"

#include <ostream>
#include <string>

#include "motexport/ExportText.h"
#include "motexport/PosedMotion.h"

namespace
{

// Enough to tell frames apart at any rate over days of capture.
constexpr int kTimeDigits = 9;

class CsvWriter
{
public:
    CsvWriter(std::ostream& out, PosedMotion& motion)
        : _motion(motion)
        , _text(out, motion.extent())
    {
    }

    bool write()
    {
        _writeHeader();
        for (int frame = 0; frame < _motion.numFrames(); ++frame)
            if (!_writeRow(frame))
                return false;
        return true;
    }

private:
    void _writeHeader()
    {
        _text.text("frame,time");
        for (int body = 0; body < _motion.numBodies(); ++body)
            _columns(body, "_");
        for (int body = 0; body < _motion.numBodies(); ++body)
            if (_motion.isLeaf(body))
                _columns(body, "_end_");
        _text.character('\n');
    }

    void _columns(int body, const char* infix)
    {
        for (const char* axis : {"x", "y", "z"})
        {
            _text.character(',');
            _field(std::string(_motion.name(body)) + infix + axis);
        }
    }

    // A name is one word, so only a quote can confuse a CSV reader: a field
    // that holds one is quoted, its quotes doubled.
    void _field(const std::string& field)
    {
        if (field.find('"') == std::string::npos)
        {
            _text.text(field.c_str());
            return;
        }
        _text.character('"');
        for (char c : field)
        {
            if (c == '"')
                _text.character('"');
            _text.character(c);
        }
        _text.character('"');
    }

    bool _writeRow(int frame)
    {
        _motion.evaluate(frame);
        _text.integer(_motion.frameNumber(frame));
        _text.character(',');
        _text.significant(_motion.time(frame), kTimeDigits);
        for (int body = 0; body < _motion.numBodies(); ++body)
            if (!_write(_motion.start(body), body, frame))
                return false;
        for (int body = 0; body < _motion.numBodies(); ++body)
            if (_motion.isLeaf(body) && !_write(_motion.end(body), body, frame))
                return false;
        _text.character('\n');
        return true;
    }

    bool _write(const KtVec3d& position, int body, int frame)
    {
        _text.lengths(position, ',');
        if (!_text.failed())
            return true;
        _motion.reportNotFinite(body, frame);
        return false;
    }

    PosedMotion& _motion;
    ExportText _text;
};

} // namespace

bool writeCSV(std::ostream& out, PosedMotion& motion)
{
    return CsvWriter(out, motion).write();
}
