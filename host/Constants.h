#pragma once
// The host's numbers that the exporter tests against: super classes, classes, interface ids,
// directory numbers, time, and the types and results of message boxes.
//
// The host's own headers define many of these names as macros, so an adapter that includes
// those headers must not include this one; the other host/ headers never include it.

#include <cstdint>

#include "host/Types.h"

namespace host {

// Time.
inline constexpr int TIME_TICKSPERSEC = 4800;

// Super classes.
inline constexpr SClass_ID GEN_DERIVOB_CLASS_ID = 0x2;
inline constexpr SClass_ID GEOMOBJECT_CLASS_ID = 0x10;
inline constexpr SClass_ID CAMERA_CLASS_ID = 0x20;
inline constexpr SClass_ID LIGHT_CLASS_ID = 0x30;
inline constexpr SClass_ID SHAPE_CLASS_ID = 0x40;
inline constexpr SClass_ID HELPER_CLASS_ID = 0x50;
inline constexpr SClass_ID SCENE_EXPORT_CLASS_ID = 0xA20;
inline constexpr SClass_ID MATERIAL_CLASS_ID = 0xC00;
inline constexpr SClass_ID TEXMAP_CLASS_ID = 0xC10;
inline constexpr SClass_ID CTRL_FLOAT_CLASS_ID = 0x9003;
inline constexpr SClass_ID CTRL_POINT3_CLASS_ID = 0x9005;

// First parts of classes whose second part is 0.
inline constexpr std::uint32_t TRIOBJ_CLASS_ID = 0x9;
inline constexpr std::uint32_t SPLINESHAPE_CLASS_ID = 0xA;
inline constexpr std::uint32_t OMNI_LIGHT_CLASS_ID = 0x1011;
inline constexpr std::uint32_t SPOT_LIGHT_CLASS_ID = 0x1012;
inline constexpr std::uint32_t DIR_LIGHT_CLASS_ID = 0x1013;
inline constexpr std::uint32_t FSPOT_LIGHT_CLASS_ID = 0x1014;
inline constexpr std::uint32_t TDIR_LIGHT_CLASS_ID = 0x1015;
inline constexpr std::uint32_t POINTHELP_CLASS_ID = 0x2013;
inline constexpr std::uint32_t DUMMY_CLASS_ID = 0x876234;
inline constexpr std::uint32_t DMTL_CLASS_ID = 0x2;
inline constexpr std::uint32_t MULTI_CLASS_ID = 0x200;

inline constexpr std::uint32_t BMTEX_CLASS_ID = 0x240;
inline constexpr std::uint32_t BAKE_SHELL_CLASS_ID = 0x255;  // shell material: original and baked

// Classes with two parts.
inline constexpr Class_ID BONE_OBJ_CLASSID{0x28BF6E8D, 0x2ECCA840};
// The classes of the companion material plug-in: the material description attribute and the
// deck material.
inline constexpr Class_ID MATERIAL_ATTRIB_CLASS_ID{0x7CB6596, 0x7E112E78};
inline constexpr Class_ID DECK_MTL_CLASS_ID{0xCC02D, 0x5B07B};
// Argument list controllers of a float and of a colour parameter.
inline constexpr Class_ID FLOAT_ARGUMENT_LIST_CLASS_ID{0x1B0625F8, 0x361664D0};
inline constexpr Class_ID COLOR_ARGUMENT_LIST_CLASS_ID{0x6A5A1CAB, 0x6BD85E24};

// Interface ids for Animatable::GetInterface.
inline constexpr std::uint32_t I_SKIN = 0x10000;
inline constexpr std::uint32_t I_LISTCTRL = 0x1010;

// Directory numbers for Interface::GetDir.
inline constexpr int APP_PLUGCFG_DIR = 9;

// Message box types: buttons in the low four bits, icon in the next four.
inline constexpr unsigned MB_OK = 0x0;
inline constexpr unsigned MB_OKCANCEL = 0x1;
inline constexpr unsigned MB_ABORTRETRYIGNORE = 0x2;
inline constexpr unsigned MB_YESNOCANCEL = 0x3;
inline constexpr unsigned MB_YESNO = 0x4;
inline constexpr unsigned MB_RETRYCANCEL = 0x5;
inline constexpr unsigned MB_ICONERROR = 0x10;
inline constexpr unsigned MB_ICONQUESTION = 0x20;
inline constexpr unsigned MB_ICONWARNING = 0x30;
inline constexpr unsigned MB_ICONINFORMATION = 0x40;

// Message box results.
inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;
inline constexpr int IDABORT = 3;
inline constexpr int IDRETRY = 4;
inline constexpr int IDIGNORE = 5;
inline constexpr int IDYES = 6;
inline constexpr int IDNO = 7;

// Show command for Interface::ShellExecute: a normal window.
inline constexpr int SW_SHOWNORMAL = 1;

// Results of Interface::ShellExecute of 32 and below: why the program did not start.
inline constexpr int SE_ERR_FNF = 2;  // file not found
inline constexpr int SE_ERR_PNF = 3;  // path not found
inline constexpr int SE_ERR_ACCESSDENIED = 5;
inline constexpr int SE_ERR_OOM = 8;       // out of memory
inline constexpr int SE_ERR_NOASSOC = 31;  // nothing can start this file

}  // namespace host
