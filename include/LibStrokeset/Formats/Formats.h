#pragma once

/// Everything of the file formats library (target LibStrokeset::Formats).
#include <LibStrokeset/Formats/DeviceProfile.h>
#include <LibStrokeset/Formats/DrawingSummary.h>
#include <LibStrokeset/Formats/DrawingWalk.h>
#include <LibStrokeset/Formats/MachineExport.h>
#include <LibStrokeset/Formats/PenColours.h>
#include <LibStrokeset/Formats/Svg.h>
