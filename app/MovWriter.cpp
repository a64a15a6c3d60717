// The MOV channel file: one line per frame, the frame's time followed by
// each present body's position and rotation channels.
#include "app/MovWriter.h"

#include <ostream>
#include <vector>

#include "amc/KaAMC.h"
#include "asf/KaASF.h"
#include "geometry/KtCoordSystem.h"
#include "pose/BodyTable.h"
#include "pose/ChannelLayout.h"
#include "pose/ConverterPose.h"
#include "toolkit/KtError.h"
#include "toolkit/KtFloatWriter.h"

namespace
{

// Skeleton lengths in the unit that the script declares as inches.
float lengthScale(const KaASF& asf)
{
    return static_cast<float>(1.0 / asf.header().lengthFactor);
}

// The value and its blank.
void writeNumber(KtFloatWriter& text, float value)
{
    text.number(value);
    text.character(' ');
}

// A body's position as the MOV file has always held it: relative to the
// animated system of the parent bone of the bone its name means, and in the
// world for the root and for the bones attached to it. The asymmetry is
// intended.
class MovPositions
{
public:
    MovPositions(const KaASF& asf,
                 const BodyTable& bodies,
                 float scale,
                 int degrees)
        : _bodies(bodies)
        , _pose(asf, bodies, scale, degrees)
    {
        // The identity's inverse is the same every time.
        _inverseOfIdentity.invert();
    }

    // The table must be bound to the frame.
    void startFrame() { _pose.startFrame(); }

    KtPoint position(int body)
    {
        const int target = _bodies.namedBody(body);
        const int parentBone = _bodies.parentBone(target);
        KtCoordSystem parent = _inverseOfIdentity;
        if (parentBone != BodyTable::kNone)
        {
            parent = _pose.animated(_bodies.namedBody(parentBone));
            parent.invert();
        }
        KtCoordSystem system = _pose.animated(target);
        Kt4X4FloatMat::multiply(system, system, parent);
        return system.translationVector();
    }

private:
    const BodyTable& _bodies;
    ConverterPose _pose;
    KtCoordSystem _inverseOfIdentity;
};

// One body's channels: the DOF count check, three position values from
// position() when the body translates, then its rotation values as read, in
// DOF order; a motion in radians thus yields radian values under the
// script's "degree" label, as it always has.
template <class Position>
bool writeChannels(KtFloatWriter& text,
                   int numDOFs,
                   bool translates,
                   const ChannelLayout::Rotation* rotations,
                   int numRotations,
                   const KaAMCBone& values,
                   Position position)
{
    if (numDOFs != values.numValues())
    {
        KtError("The number of degrees of freedom in the AMC does not match "
                "the number of degrees of freedom in the ASF.");
        return false;
    }
    if (translates)
    {
        KtPoint p = position();
        writeNumber(text, p.x);
        writeNumber(text, p.y);
        writeNumber(text, p.z);
    }
    for (int i = 0; i < numRotations; ++i)
        writeNumber(text, values.value(rotations[i].dofIndex));
    return true;
}

void reportFailure(const BodyTable& bodies, int body)
{
    if (body == BodyTable::kRoot)
        KtError("Unable to convert transformations to MOV for \"root\".");
    else
        // Deliberately without a closing quote after the name: the message
        // has always read so.
        KtError("Unable to convert transformations to MOV for body \"%s.",
                bodies.name(body));
}

// The bodies that this frame holds, which may be fewer than the first
// frame's: the line is then shorter.
bool writeFrame(KtFloatWriter& text,
                BodyTable& bodies,
                const ChannelLayout& layout,
                MovPositions& positions,
                const KaAMCField& frame,
                int fps)
{
    writeNumber(text,
                static_cast<float>(frame.frameNumber()) /
                    static_cast<float>(fps));
    bodies.bind(frame);
    positions.startFrame();
    for (int body = 0; body < bodies.count(); ++body)
    {
        if (!bodies.values(body))
            continue;
        const ChannelLayout::Body& channels = layout.body(body);
        if (!writeChannels(text,
                           bodies.numCodes(body),
                           channels.translates,
                           layout.rotations(body),
                           channels.numRotations,
                           *bodies.values(body),
                           [&] { return positions.position(body); }))
        {
            reportFailure(bodies, body);
            return false;
        }
    }
    text.character('\n');
    return true;
}

} // namespace

bool writeMOVData(std::ostream& out,
                  const KaASF& asf,
                  const KaAMC& amc,
                  BodyTable& bodies,
                  const ChannelLayout& layout,
                  int fps)
{
    KtFloatWriter text(out);
    MovPositions positions(asf, bodies, lengthScale(asf), amc.units());
    for (int i = 0; i < amc.numFields(); ++i)
        if (!writeFrame(text, bodies, layout, positions, amc.field(i), fps))
            return false;
    return true;
}

void writeMOVData(std::ostream& out,
                  const KaASF& asf,
                  const KaAMC& amc,
                  int fps)
{
    BodyTable bodies(asf, &amc.boneNames());
    ChannelLayout layout(bodies, amc);
    writeMOVData(out, asf, amc, bodies, layout, fps);
}

void writeBodyChannels(std::ostream& out,
                       const char* name,
                       const KaASF& asf,
                       const KaAMCField& frame,
                       const KaASFDOFGroup& dofs,
                       const KaAMCBone& values,
                       float scale,
                       int units)
{
    std::vector<ChannelLayout::Rotation> rotations;
    ChannelLayout::appendRotations(dofs, &rotations);
    BodyTable bodies(asf, nullptr);
    const int body = bodies.bodyNamed(name);
    bodies.bind(frame);
    MovPositions positions(asf, bodies, scale, units);
    positions.startFrame();
    KtFloatWriter text(out);
    writeChannels(text,
                  dofs.numDOFs(),
                  hasTranslationDOF(dofs),
                  rotations.data(),
                  static_cast<int>(rotations.size()),
                  values,
                  [&] {
                      return body == BodyTable::kNone
                                 ? KtPoint()
                                 : positions.position(body);
                  });
}
