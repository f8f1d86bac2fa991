// A frame as a picture for the terminal: one box for each field.
#ifndef ZUCOM_TOOLS_FRAME_PICTURE_H
#define ZUCOM_TOOLS_FRAME_PICTURE_H

#include "tools/explain/frameReading.h"

// Boxes with name and bytes, then a line for each field with its meaning, then faults and remedies.
std::string framePicture(const FrameReading& reading);

#endif
