// The rest frames of one bone, composed from its axis and its parent.
#pragma once

class KaASFBone;
class KtCoordSystem;

// axisFrame: the bone's own axis rotation. placedFrame: that rotation times
// parentFrame, with its translation row replaced (not added to) by the
// parent bone's direction times its length, turned by parentFrame's
// rotation; zero for a bone attached to the root. Callers multiply
// placedFrame onto the parent's system again, which is why the parent's
// translation is left out here.
void KaGetComposedBoneMatrices(KtCoordSystem* axisFrame,
                               KtCoordSystem* placedFrame,
                               const KaASFBone& bone,
                               const KtCoordSystem& parentFrame);
