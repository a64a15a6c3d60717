// The converter's pose by name: the world coordinate system of one body (the
// root or a bone), at rest and as animated by one frame of motion.
#pragma once

class KaAMCBone;
class KaAMCField;
class KaASF;
class KaASFDOFGroup;
class KaASFRoot;
class KtCoordSystem;

// Thin entries to ConverterPose for callers that hold a name rather than a
// body table. Every function takes:
// - scale: the length scale of translations (1 / the skeleton's length unit);
// - degrees: non-zero when the frame's angles are degrees, else radians.

// A group's values as ConverterPose applies them (applyDOFCodes).
void applyDOFValues(KtCoordSystem& cs,
                    const KaASFDOFGroup& dofs,
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

// The caller passes both outputs set to the identity. The name "root"
// (exactly) is the root, any other name the first bone of that name ignoring
// case; a name that means no body leaves both outputs as they are.
void evaluateBodyFrame(KtCoordSystem& animated,
                       KtCoordSystem& rest,
                       const KaASF& asf,
                       const KaAMCField& frame,
                       const char* name,
                       float scale,
                       int degrees);
