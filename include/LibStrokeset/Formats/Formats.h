#pragma once

/// Everything of the file formats library (target LibStrokeset::Formats).
#include <LibStrokeset/Formats/DrawingWalk.h>
#include <LibStrokeset/Formats/PenColours.h>
#include <LibStrokeset/Formats/Svg.h>
