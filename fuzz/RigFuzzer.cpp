// Fuzz target: rigbake's whole run held in memory. Any bytes are read as a
// skeleton; what reads is made into joints and a script. A rig must keep
// its promises: every joint after its parent, and only finite numbers.
#include <cstdlib>
#include <sstream>
#include <vector>

#include "asf/KaASF.h"
#include "fuzz/FuzzInput.h"
#include "rigbake/RigJoints.h"
#include "rigbake/RigScript.h"
#include "toolkit/KtError.h"

namespace
{

void checkJoints(const RigJoints& joints)
{
    int count = 0;
    joints.forEach(
        [&count](const RigJoint& joint)
        {
            if (joint.parent >= count++ || !KtIsFinite(joint.translate) ||
                !KtIsFinite(joint.jointOrient))
                std::abort();
        });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > kMaxFuzzInput)
        return 0;
    theExceptObj.clear();
    std::istringstream in(fuzzText(data, size));
    KaASF skeleton;
    skeleton.scanFrom(in);
    const RigJoints joints(skeleton);
    if (!theExceptObj.errorOccurred() && joints.check())
    {
        checkJoints(joints);
        std::ostringstream script;
        writeRigScript(script, joints);
    }
    theExceptObj.clear();
    return 0;
}
