#pragma once

// Everything a host needs to load, edit, optimize and write drawings.

#include <LibStrokeset/EOpcodeType.h>
#include <LibStrokeset/CElement.h>
#include <LibStrokeset/CDrawingElement.h>
#include <LibStrokeset/CDot.h>
#include <LibStrokeset/CLine.h>
#include <LibStrokeset/CUnsupportedElement.h>
#include <LibStrokeset/IIteratorCallback.h>
#include <LibStrokeset/IFirstPosition.h>
#include <LibStrokeset/ILastPosition.h>
#include <LibStrokeset/CCollection.h>
#include <LibStrokeset/CDotCollection.h>
#include <LibStrokeset/CUnsupportedElementCollection.h>
#include <LibStrokeset/CSubPath.h>
#include <LibStrokeset/COptimizationParameters.h>
#include <LibStrokeset/COptimizationResults.h>
#include <LibStrokeset/CTravelOptimizationParameters.h>
#include <LibStrokeset/CTravelOptimizationResults.h>
#include <LibStrokeset/CStrokeset.h>
