// The rest frames of one bone, composed from its axis and its parent.
#include "asf/KaBoneFrame.h"

#include "asf/KaASFBone.h"
#include "geometry/KtCoordSystem.h"
#include "geometry/KtEuler.h"

void KaGetComposedBoneMatrices(KtCoordSystem* axisFrame,
                               KtCoordSystem* placedFrame,
                               const KaASFBone& bone,
                               const KtCoordSystem& parentFrame)
{
    KtCoordSystem axis;
    axis.setRotationMatrix(
        KtComposeRotationMatrix(bone.axis(), bone.axisOrder()));

    KtCoordSystem placed;
    Kt4X4FloatMat::multiply(placed, axis, parentFrame);

    // The bone starts at the end of its parent bone, in the parent's rest
    // orientation.
    KtPoint offset;
    if (const KaASFBone* parent = bone.parent())
        offset = KtPoint(parent->direction().x * parent->length(),
                         parent->direction().y * parent->length(),
                         parent->direction().z * parent->length());
    Kt3X3FloatMat parentRotation;
    parentFrame.getRotationMatrix(&parentRotation);
    Kt3X3FloatMat::_preMultPoint(&offset, offset, parentRotation);
    placed.setTranslationVector(offset);

    *axisFrame = axis;
    *placedFrame = placed;
}
