// The MOV channel file: one line per frame, the frame's time followed by
// each present body's position and rotation channels.
#include "app/MovWriter.h"

#include <cstring>
#include <ostream>

#include "amc/KaAMC.h"
#include "app/BodyTable.h"
#include "app/MelWriter.h"
#include "app/PoseEvaluation.h"
#include "app/PoseEvaluator.h"
#include "asf/KaASF.h"
#include "geometry/KtCoordSystem.h"
#include "toolkit/KtError.h"
#include "toolkit/KtFormatFloat.h"

namespace
{

constexpr const char* kRootName = "root";
// Text is handed to the stream in blocks of about this size.
constexpr int kBlockSize = 1 << 16;

// Collects the file's text and hands it to the stream in large blocks.
// Numbers take KtFormatFloat's text when the stream would write the same;
// otherwise the stream's own insertion writes them.
class ChannelText
{
public:
    explicit ChannelText(std::ostream& out)
        : _out(out)
        , _fast(KtStreamFormatsFloatsByDefault(out))
    {
    }
    ~ChannelText() { flush(); }
    ChannelText(const ChannelText&) = delete;
    ChannelText& operator=(const ChannelText&) = delete;

    // The value and a blank.
    void number(float value)
    {
        _makeRoom();
        if (_fast)
            _end = KtFormatFloat(_end, value);
        else
        {
            flush();
            _out << value;
        }
        *_end++ = ' ';
    }
    void endLine()
    {
        _makeRoom();
        *_end++ = '\n';
    }
    void flush()
    {
        _out.write(_block, _end - _block);
        _end = _block;
    }

private:
    void _makeRoom()
    {
        if (_end - _block >= kBlockSize)
            flush();
    }

    std::ostream& _out;
    bool _fast;
    // Room for the longest number and its blank past the block size.
    char _block[kBlockSize + kKtFloatTextSize];
    char* _end = _block;
};

// The rotation values as read, in DOF order; a motion in radians thus yields
// radian values under the script's "degree" label, as it always has.
void writeRotations(ChannelText& text,
                    const int* codes,
                    int numCodes,
                    const KaAMCBone& values)
{
    for (int i = 0; i < numCodes; ++i)
        if (KaIsRotationDOF(codes[i]))
            text.number(values.value(i));
}

// One body's channels, with its position from position(): the DOF count
// check, three position values when the body translates, then its rotations.
template <class Position>
void writeChannels(ChannelText& text,
                   const int* codes,
                   int numCodes,
                   bool translates,
                   const KaAMCBone& values,
                   Position position)
{
    if (numCodes != values.numValues())
    {
        KtError("The number of degrees of freedom in the AMC does not match "
                "the number of degrees of freedom in the ASF.");
        return;
    }
    if (translates)
    {
        KtPoint p = position();
        text.number(p.x);
        text.number(p.y);
        text.number(p.z);
    }
    writeRotations(text, codes, numCodes, values);
}

// The position of a body relative to its parent bone's animated frame,
// evaluated by name. For the root and for bones attached to it the parent
// stays the identity, so their positions are world positions; the asymmetry
// is intended.
KtPoint bodyPosition(const char* name,
                     const KaASF& asf,
                     const KaAMCField& frame,
                     float scale,
                     int units)
{
    KtCoordSystem parent;
    KtCoordSystem parentRest;
    KtCoordSystem body;
    KtCoordSystem bodyRest;
    if (std::strcmp(name, kRootName) != 0)
    {
        const KaASFBone* bone = asf.findBone(name);
        if (bone && bone->parent())
            evaluateBodyFrame(parent,
                              parentRest,
                              asf,
                              frame,
                              bone->parent()->name(),
                              scale,
                              units);
    }
    evaluateBodyFrame(body, bodyRest, asf, frame, name, scale, units);
    parent.invert();
    Kt4X4FloatMat::multiply(body, body, parent);
    return body.translationVector();
}

// The frames one after the other; each frame binds the body table once and
// evaluates each body's systems once.
class MovFrames
{
public:
    MovFrames(ChannelText& text,
              const KaASF& asf,
              const KaAMC& amc,
              float scale)
        : _text(text)
        , _bodies(asf, &amc.boneNames())
        , _pose(asf, _bodies, scale, amc.units())
    {
    }

    bool write(const KaAMCField& frame, int fps)
    {
        _text.number(static_cast<float>(frame.frameNumber()) /
                     static_cast<float>(fps));
        _bodies.bind(frame);
        _pose.startFrame();
        for (int body = 0; body < _bodies.count(); ++body)
        {
            if (!_bodies.values(body))
                continue;
            _writeBody(body);
            if (theExceptObj.errorOccurred())
            {
                _reportFailure(body);
                return false;
            }
        }
        _text.endLine();
        return true;
    }

private:
    void _writeBody(int body)
    {
        writeChannels(_text,
                      _bodies.codes(body),
                      _bodies.numCodes(body),
                      _bodies.translates(body),
                      *_bodies.values(body),
                      [&] { return _pose.position(body); });
    }

    void _reportFailure(int body)
    {
        if (body == BodyTable::kRoot)
            KtError("Unable to convert transformations to MOV for \"root\".");
        else
            // Deliberately without a closing quote after the name: the
            // message has always read so.
            KtError("Unable to convert transformations to MOV for body \"%s.",
                    _bodies.name(body));
    }

    ChannelText& _text;
    BodyTable _bodies;
    PoseEvaluator _pose;
};

} // namespace

void writeBodyChannels(std::ostream& out,
                       const char* name,
                       const KaASF& asf,
                       const KaAMCField& frame,
                       const KaASFDOFGroup& dofs,
                       const KaAMCBone& values,
                       float scale,
                       int units)
{
    const KtArray<int> codes = dofs.codes();
    ChannelText text(out);
    writeChannels(text,
                  codes.data(),
                  codes.count(),
                  hasTranslationDOF(dofs),
                  values,
                  [&] { return bodyPosition(name, asf, frame, scale, units); });
}

void writeMOVData(std::ostream& out,
                  const KaASF& asf,
                  const KaAMC& amc,
                  int fps)
{
    // Skeleton lengths in the unit that the script declares as inches.
    const float scale = static_cast<float>(1.0 / asf.header().lengthFactor);
    ChannelText text(out);
    MovFrames frames(text, asf, amc, scale);
    for (int i = 0; i < amc.numFields(); ++i)
        if (!frames.write(amc.field(i), fps))
            return;
}
