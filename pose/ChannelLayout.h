// ChannelLayout: the channels of one conversion, decided once from the
// motion's first frame and shared by every writer of the run.
#pragma once

#include <vector>

class BodyTable;
class KaAMC;
class KaASFDOFGroup;

// The channel order: the root (when the first frame holds it), then the
// skeleton's bones that the first frame holds, in bone order. A body that
// translates at all has three position channels, X, Y and Z, whichever of
// tx, ty and tz it has; then one channel per rotation DOF in DOF order. The
// channels are numbered from 0 without gaps over the present bodies: the
// script's "-axis" numbers and the MOV columns after the time.
class ChannelLayout
{
public:
    // One rotation channel: where its value stands among the body's DOF
    // values, and its DOF code (kDofRX, kDofRY or kDofRZ).
    struct Rotation
    {
        int dofIndex;
        int code;
    };

    // The rotations are listed for present bodies only.
    struct Body
    {
        int firstRotation = 0;
        int numRotations = 0;
        bool translates = false;
        // The first frame holds the body: it has channels.
        bool present = false;
        // Its value count in the first frame, 0 when absent.
        int firstFrameValues = 0;
        int firstChannel = -1;
        int numChannels = 0;
    };

    // Binds the table to the motion's first frame; a motion without frames
    // has no channels.
    ChannelLayout(BodyTable& bodies, const KaAMC& amc);

    // Indexed like the table's bodies.
    const Body& body(int body) const { return _bodies[body]; }
    int numBodies() const { return static_cast<int>(_bodies.size()); }
    const Rotation* rotations(int body) const
    {
        return _rotations.data() + _bodies[body].firstRotation;
    }
    int numChannels() const { return _numChannels; }

    // Appends the rotation channels of a DOF group, in DOF order.
    static void appendRotations(const KaASFDOFGroup& dofs,
                                std::vector<Rotation>* rotations);

private:
    std::vector<Body> _bodies;
    std::vector<Rotation> _rotations;
    int _numChannels = 0;
};
