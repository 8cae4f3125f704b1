/* The widths and offsets of the I3C types in C; in this file compiling is passing. */
#include <veltrasdk/i3c.h>

#include <stddef.h>

_Static_assert(sizeof(I3cTargetInfo) == 16, "I3cTargetInfo");
_Static_assert(offsetof(I3cTargetInfo, staticAddress) == 0, "staticAddress");
_Static_assert(offsetof(I3cTargetInfo, dynamicAddress) == 1, "dynamicAddress");
_Static_assert(offsetof(I3cTargetInfo, pid) == 2, "pid");
_Static_assert(offsetof(I3cTargetInfo, bcr) == 8, "bcr");
_Static_assert(offsetof(I3cTargetInfo, dcr) == 9, "dcr");
_Static_assert(offsetof(I3cTargetInfo, maxWriteLength) == 10, "maxWriteLength");
_Static_assert(offsetof(I3cTargetInfo, maxReadLength) == 12, "maxReadLength");
_Static_assert(offsetof(I3cTargetInfo, maxIbiPayloadSize) == 14, "maxIbiPayloadSize");
_Static_assert(offsetof(I3cTargetInfo, configuration) == 15, "configuration");

_Static_assert(sizeof(I3cTargetConfiguration) == 1, "I3cTargetConfiguration");
_Static_assert(sizeof(I3cPushPullRate) == 4, "I3cPushPullRate");
_Static_assert(sizeof(I3cOpenDrainTransferRate) == 4, "I3cOpenDrainTransferRate");
_Static_assert(sizeof(I2cTransferRate) == 4, "I2cTransferRate");
_Static_assert(sizeof(I3cDriveStrength) == 4, "I3cDriveStrength");
_Static_assert(sizeof(I3cTransferFlags) == 4, "I3cTransferFlags");
_Static_assert(sizeof(I3cTransferDirection) == 4, "I3cTransferDirection");
_Static_assert(sizeof(I3cTransferMode) == 4, "I3cTransferMode");
_Static_assert(sizeof(I3cCccType) == 4, "I3cCccType");
_Static_assert(sizeof(CCC) == 4, "CCC");
_Static_assert(sizeof(I3cTargetResetDefByte) == 4, "I3cTargetResetDefByte");
