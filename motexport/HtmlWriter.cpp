// The page export. The page (motexport/viewer/) gets the motion as one JSON
// object in a <script type="application/json"> element: the names, the
// bones as pairs of points, and every frame packed in base64.
//
// A frame's points are the CSV's: every body's start (the root's joint
// first, then the bones in skeleton order), then every leaf bone's end. A
// bone is drawn from its start to its first child's start, which is its
// end unless the child translates, or to its own end for a leaf.
//
// Each frame is packed, little-endian, as its number (int32), the root's
// joint (three float32) and then every other point's offset from the
// root's joint, each axis quantised to 16 bits over the take's range of
// that axis: value = offsetMin + q * offsetStep. A figure's offsets span a
// few of its heights at most, so a step is a few hundred-thousandths of
// its height, far below a pixel; the root's path keeps float precision
// however far it goes.
#include "motexport/HtmlWriter.h"

#include <algorithm>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstring>
#include <ostream>
#include <string>
#include <vector>

#include "motexport/ExportFormat.h"
#include "motexport/PageText.h"
#include "motexport/PosedMotion.h"
#include "motexport/ViewerAssets.h"

namespace
{

constexpr double kLevels = 65535.0;
// The longest text of a double in any form.
constexpr int kNumberTextSize = 40;

bool fitsFloat(const KtVec3d& v)
{
    for (int axis = 0; axis < 3; ++axis)
        if (!(std::fabs(v[axis]) <= FLT_MAX))
            return false;
    return true;
}

class HtmlWriter
{
public:
    HtmlWriter(std::ostream& out,
               PosedMotion& motion,
               const ExportSource& source)
        : _out(out)
        , _motion(motion)
        , _source(source)
    {
        for (int body = 0; body < motion.numBodies(); ++body)
            if (motion.isLeaf(body))
                _leaves.push_back(body);
        _numPoints = motion.numBodies() + static_cast<int>(_leaves.size());
    }

    bool write()
    {
        if (!_measure())
            return false;
        _writePage();
        return true;
    }

private:
    KtVec3d _point(int point) const
    {
        const int bodies = _motion.numBodies();
        return point < bodies ? _motion.start(point)
                              : _motion.end(_leaves[point - bodies]);
    }

    // The body whose place a point is, for the error message.
    int _body(int point) const
    {
        const int bodies = _motion.numBodies();
        return point < bodies ? point : _leaves[point - bodies];
    }

    // Every frame once: the range of the offsets, each axis (the root's own
    // offset, zero, among them), and the check that every number fits the
    // page's. Returns false with the error posted.
    bool _measure()
    {
        KtVec3d low(0, 0, 0), high(0, 0, 0);
        for (int frame = 0; frame < _motion.numFrames(); ++frame)
        {
            _motion.evaluate(frame);
            const KtVec3d root = _motion.start(StandardPose::kRoot);
            for (int point = 0; point < _numPoints; ++point)
            {
                const KtVec3d offset = _point(point) - root;
                if (!fitsFloat(_point(point)) || !fitsFloat(offset))
                {
                    _motion.reportNotFinite(_body(point), frame);
                    return false;
                }
                for (int axis = 0; axis < 3; ++axis)
                {
                    low[axis] = std::min(low[axis], offset[axis]);
                    high[axis] = std::max(high[axis], offset[axis]);
                }
            }
        }
        _offsetMin = low;
        for (int axis = 0; axis < 3; ++axis)
            _offsetStep[axis] = (high[axis] - low[axis]) / kLevels;
        return true;
    }

    // The page's text with its slots filled.
    void _writePage()
    {
        const char* text = kViewerPage;
        while (const char* open = std::strstr(text, "{{"))
        {
            _out.write(text, open - text);
            const char* name = open + 2;
            const char* close = std::strstr(name, "}}");
            _writeSlot(std::string(name, close));
            text = close + 2;
        }
        _out << text;
    }

    void _writeSlot(const std::string& name)
    {
        if (name == "title")
            _out << htmlText(_source.amcFile) << " &middot; "
                 << htmlText(_source.skeletonName);
        else if (name == "style")
            _out << kViewerStyle;
        else if (name == "script")
            _out << kViewerScript;
        else if (name == "motion")
            _writeMotion();
    }

    void _writeMotion()
    {
        _out << "{\"skeleton\":" << jsonString(_source.skeletonName)
             << ",\"skeletonFile\":" << jsonString(_source.asfFile)
             << ",\"motionFile\":" << jsonString(_source.amcFile)
             << ",\"fps\":";
        _number(1.0 / _motion.frameTime());
        _out << ",\"up\":\"" << (_source.zUp ? 'z' : 'y') << "\",\"bodies\":[";
        for (int body = 0; body < _motion.numBodies(); ++body)
            _out << (body ? "," : "") << jsonString(_motion.name(body));
        _out << "],\"leaves\":[";
        for (size_t i = 0; i < _leaves.size(); ++i)
            _out << (i ? "," : "") << _leaves[i];
        _out << "],\"segments\":[";
        _writeSegments();
        _out << "],\"frames\":" << _motion.numFrames() << ",\"offsetMin\":";
        _vector(_offsetMin);
        _out << ",\"offsetStep\":";
        _vector(_offsetStep);
        _out << ",\"data\":\"";
        _writeFrames();
        _out << "\"}";
    }

    // Point pairs, flat: each bone's start and where it ends.
    void _writeSegments()
    {
        const int bodies = _motion.numBodies();
        int leaf = 0;
        for (int body = StandardPose::kRoot + 1; body < bodies; ++body)
        {
            const int end = _motion.isLeaf(body)
                                ? bodies + leaf++
                                : _motion.children(body).front();
            _out << (body > 1 ? "," : "") << body << ',' << end;
        }
    }

    void _writeFrames()
    {
        Base64Writer data(_out);
        for (int frame = 0; frame < _motion.numFrames(); ++frame)
        {
            _motion.evaluate(frame);
            data.int32(_motion.frameNumber(frame));
            const KtVec3d root = _motion.start(StandardPose::kRoot);
            for (int axis = 0; axis < 3; ++axis)
                data.float32(static_cast<float>(root[axis]));
            for (int point = 1; point < _numPoints; ++point)
            {
                const KtVec3d offset = _point(point) - root;
                for (int axis = 0; axis < 3; ++axis)
                    data.uint16(_quantised(offset[axis], axis));
            }
        }
        data.finish();
    }

    uint16_t _quantised(double value, int axis) const
    {
        if (_offsetStep[axis] == 0.0)
            return 0;
        const double steps =
            std::round((value - _offsetMin[axis]) / _offsetStep[axis]);
        return static_cast<uint16_t>(std::clamp(steps, 0.0, kLevels));
    }

    void _number(double value)
    {
        char digits[kNumberTextSize];
        _out.write(digits,
                   std::to_chars(digits, digits + sizeof digits, value).ptr -
                       digits);
    }

    void _vector(const KtVec3d& v)
    {
        for (int axis = 0; axis < 3; ++axis)
        {
            _out << (axis ? ',' : '[');
            _number(v[axis]);
        }
        _out << ']';
    }

    std::ostream& _out;
    PosedMotion& _motion;
    const ExportSource& _source;
    std::vector<int> _leaves;
    int _numPoints = 0;
    KtVec3d _offsetMin = KtVec3d(0, 0, 0);
    KtVec3d _offsetStep = KtVec3d(0, 0, 0);
};

} // namespace

bool writeHTML(std::ostream& out,
               PosedMotion& motion,
               const ExportSource& source)
{
    return HtmlWriter(out, motion, source).write();
}
