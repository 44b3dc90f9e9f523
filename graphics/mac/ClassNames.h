// Objective-C has one set of class names for the whole process. The names of this layer end in the
// product and the format, so that two plug-ins in one host cannot collide.
#pragma once

#define IGraphicsMac IGraphicsMac_vTolmara_vst
#define IGraphicsCocoa IGraphicsCocoa_vTolmara_vst
#define IGraphicsNSMenu IGraphicsNSMenu_vTolmara_vst
#define IGraphicsMenuRcvr IGraphicsMenuRcvr_vTolmara_vst
#define CustomCocoaWindow CustomCocoaWindow_vTolmara_vst
#define CocoaFormatter CocoaFormatter_vTolmara_vst
