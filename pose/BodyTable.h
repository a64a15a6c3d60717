// BodyTable: the skeleton's bodies, numbered once for every output, and the
// one place where a name is resolved to a body.
#pragma once

#include <functional>
#include <vector>

#include "amc/KaAMC.h"
#include "toolkit/KtArray.h"
#include "toolkit/KtNameIndex.h"
#include "toolkit/KtNameList.h"
#include "toolkit/KtStr.h"

class KaAMCField;
class KaASF;
class KaASFBone;
class KaASFDOFGroup;

// Body 0 is the root, named "root"; bodies 1 to count() - 1 are the bones in
// bone-list order. Each carries its DOF codes, gathered once, so that no
// frame walks the DOF lists again.
//
// Names resolve as the converter has always resolved them, and only here:
// - in a skeleton, exactly "root" means the root and any other name the
//   first bone of that name ignoring case (namedBody);
// - in a frame, a body's values are those of the first bone line whose name
//   equals the body's ignoring case (bind).
class BodyTable
{
public:
    static constexpr int kRoot = 0;
    static constexpr int kNone = -1;

    // motionNames: the bone names that the motion's fields share by
    // position (KaAMC::boneNames), or null. With them a frame's line for a
    // body is found without a search; without them each frame is searched
    // with KaAMCField::findBone.
    BodyTable(const KaASF& asf, const KtNameList* motionNames);

    int count() const { return _bodies.count(); }
    const char* name(int body) const;
    const KaASFDOFGroup& dofGroup(int body) const
    {
        return *_bodies[body].dofs;
    }
    // Null for the root.
    const KaASFBone* bone(int body) const { return _bodies[body].bone; }
    // The body a bone is placed under: its parent bone, or the root.
    int parent(int body) const { return _bodies[body].parent; }
    // The body of the bone's parent bone; kNone for the root and for the
    // bones that hang from it.
    int parentBone(int body) const { return _bodies[body].parentBone; }

    // The body that the name means in the skeleton, kNone when none.
    int bodyNamed(const char* name) const;
    // The body that this body's own name means: itself, unless an earlier
    // bone has the same name ignoring case, or the bone is named "root".
    int namedBody(int body) const { return _bodies[body].named; }

    const int* codes(int body) const
    {
        return _codes.data() + _bodies[body].firstCode;
    }
    int numCodes(int body) const { return _bodies[body].numCodes; }

    // Looks every body's values up in the frame: values(body) is then
    // exactly what frame.findBone(name(body)) returns, null when the frame
    // has none. The frame must outlive the binding.
    void bind(const KaAMCField& frame);
    const KaAMCBone* values(int body) const { return _values[body]; }
    // All bodies' values, indexed by body.
    const KaAMCBone* const* boundValues() const { return _values.data(); }
    // The bound frame's line that holds the body's values, kNone when none.
    int line(int body) const;

private:
    struct Body
    {
        const KaASFBone* bone = nullptr;
        const KaASFDOFGroup* dofs = nullptr;
        int parent = kRoot;
        int parentBone = kNone;
        int named = kNone;
        int firstCode = 0;
        int numCodes = 0;
        // Where findBone would find the body's name in motionNames: the
        // first position equal ignoring case, or -1.
        int namePosition = -1;
    };

    void _addBody(int body,
                  const KaASFBone* bone,
                  const KaASFDOFGroup& dofs,
                  int& code);
    void _locateNames(const KtNameList& names);
    void _makeSlots();
    void _linkBodies();
    int _bodyOf(const KaASFBone* bone) const;
    int _firstBodyNamed(const char* name) const;

    // The bodies of the bones, ordered by the bones' addresses.
    struct BoneBody
    {
        const KaASFBone* bone;
        int body;
        bool operator<(const BoneBody& other) const
        {
            return std::less<const KaASFBone*>()(bone, other.bone);
        }
    };

    KtDArray<Body> _bodies;
    KtDArray<int> _codes;
    std::vector<BoneBody> _bodyOfBone;
    KtNameIndex<const KaASFBone> _bonesByName;
    const KaASF& _asf;
    const KtNameList* _motionNames;
    // The bound frame's values of each body (null when the frame lacks it),
    // pointing at a view in the body's slot, where its line is kept too.
    KtDArray<const KaAMCBone*> _values;
    KtDArray<int> _slot;
    KtDArray<KaAMCBone> _views;
    KtDArray<int> _lines;
};
