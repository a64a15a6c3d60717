// Pose evaluation: the world coordinate system of a body (the root or a
// bone), at rest and as animated by one frame of motion.
#pragma once

class KaAMCBone;
class KaAMCField;
class KaASF;
class KaASFDOFGroup;
class KaASFRoot;
class KtCoordSystem;

// Every function takes:
// - scale: the length scale of translations (1 / the skeleton's length unit);
// - degrees: non-zero when the frame's angles are degrees, else radians.

// Applies one DOF value through the frame's "pre" operations, so it acts in
// the frame's own local axes. Kinds other than translations and rotations
// are ignored.
void applyDOFValue(
    KtCoordSystem& cs, int dofKind, float value, float scale, int degrees);

// Translations first in DOF order, then rotations in reverse DOF order; the
// rotations take their values counting back from the last value. Values that
// a body does not have (fewer values than DOFs) are skipped.
void applyDOFValues(KtCoordSystem& cs,
                    const KaASFDOFGroup& dofs,
                    const float* values,
                    int numValues,
                    float scale,
                    int degrees);
// The same for a group given by its DOF codes in order.
void applyDOFCodes(KtCoordSystem& cs,
                   const int* codes,
                   int numCodes,
                   const float* values,
                   int numValues,
                   float scale,
                   int degrees);

void evaluateRootFrame(KtCoordSystem& animated,
                       KtCoordSystem& rest,
                       const KaASFRoot& root,
                       const KaAMCBone& values,
                       float scale,
                       int degrees);

// The entry point. The caller passes both outputs set to the identity. The
// name "root" (exactly) is the root; any other name must be a skeleton bone.
// A frame without root values leaves the root at the identity; a bone absent
// from the frame keeps its rest geometry under its animated parent.
void evaluateBodyFrame(KtCoordSystem& animated,
                       KtCoordSystem& rest,
                       const KaASF& asf,
                       const KaAMCField& frame,
                       const char* name,
                       float scale,
                       int degrees);
