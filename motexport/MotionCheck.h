// The checks of a motion before it is exported: every value of every frame
// lands on the DOF it is meant for, or the run stops.
#pragma once

class KaAMC;
class KaASF;

// Warnings, one per name: a bone line of the first frame that no body takes
// (a name the skeleton lacks, or a bone's second line) is left out; and a
// motion without frames. A skeleton bone that the motion never names stays
// at rest without a word.
void warnAboutBoneLines(const KaASF& asf, const KaAMC& amc);

// Errors: a later frame whose bone lines are not the first frame's in the
// same order, or a bone whose values in some frame do not match its DOF
// count. The first of them is posted, naming the frame and the bone, and
// false returned.
bool checkMotionValues(const KaASF& asf, const KaAMC& amc);
