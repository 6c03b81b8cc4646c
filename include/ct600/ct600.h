// ct600: recalculation and validation of the UK company tax return (CT600 and
// its supplementary pages, all three generations of the form). This is the one
// header a host includes; it brings the value types the exports take and the
// declarations of every export.
//
// Building a host
//   C++20, the same C++ standard library and ABI as the library (libstdc++;
//   no _GLIBCXX_DEBUG), since CString and the maps cross the boundary by value
//   layout. CMake: find_package(ct600 CONFIG REQUIRED), then link ct600::ct600
//   (libct600.so) or ct600::ct600_static (libct600.a). Otherwise:
//   pkg-config --cflags --libs ct600.
//   libct600.so shows only the C names of the exports. The code of the value
//   types (CString, CMapStringToString, CStringArray, CObList, CTime, CXMLVar)
//   comes into the host from libct600_types.a, which ct600::ct600 and ct600.pc
//   link for you; the library holds its own private copy of the same code. So
//   a tree node may be made on one side and freed on the other: nodes that an
//   export adds to a host's tree belong to that tree, and CXMLVar's destructor
//   frees them.
//   FormEntries and FindFormEntry (entry/exports.h) are C++ functions of the
//   static library only; with libct600.so call an entry by name, or dlsym it.
//
// Calls
//   On the host's thread, one at a time: the report files have fixed names and
//   the module has static state, so calls must not overlap, not even from
//   different threads. No call depends on an earlier one. No export throws;
//   every pointer argument may be null (an empty map, an empty prefix, or no
//   result kept).
//
// Form entries: ct600_NN, cts_NN, ctv2_NN, ctv3_NN and the page entries
// _cta_NN ... _ctl_NN, _ctav3_NN ... _ctlv3_NN (NN is the form's year; the
// exact set is CT600_FORM_MATRIX in entry/form_matrix.inc, 232 names).
//     int entry(CMapStringToString* boxes, CString* prefix, CMapStringToString* result);
//   boxes   the host's box map: box key ("Q155", "QA10B.3", "from", "to",
//           "form", ...) to text. Read and changed in place: computed boxes
//           are written as "%f" text. A value ending in "!" is the user's
//           override and is kept (only a result of the liability engine,
//           such as a financial year's rows, replaces it); "zero" asks for an
//           explicit nought.
//           Reading through operator[] adds an empty entry; use Lookup or
//           PLookup to read without adding.
//   prefix  read only. Empty for an ordinary run; otherwise it stands in front
//           of every key read and written, and the run stops after the main
//           return (no pages, no field checks).
//   result  written: "validation" holds the run's field-check errors as XML
//           text, present even when there are none; other keys hold the run's
//           text results.
//   Returns 1, whatever the run found. The calculator is chosen by the name:
//   years 02 and 03 the first generation (ct600_02 and what forwards to it run
//   twice, under the caller's prefix and again under "S"), from 04 the second
//   (ct600_, cts_, _cta_ ... _ctl_), and ctv2_, ctv3_ and _ctav3_ ... _ctlv3_
//   the third. A page entry runs the whole return's calculator over whatever
//   boxes the map holds.
//   The worked report of the tax computation goes to calc.htm (an HTML
//   fragment) and ctcharge.xml in the temporary folder, replaced on each run,
//   and its XML text into the box map under "xml/CT/CTchargeable".
//
// void do_calc(CXMLVar* tree)
//   Recalculates a return held as a tree, in place: the children of its
//   "Boxes" node are the box map. A "form" starting "ctv3" (any case) runs
//   ctv3_16; a "type" attribute of "CTA", or a node named "TF" with no type,
//   runs _cta_04; anything else is not calculated. "Boxes" is then rebuilt
//   from the boxes and the results, leaving out every box that is a pure
//   nought, and the error document of the run replaces the former one.
//
// int do_calc2(CMapStringToString* boxes, CString* prefix, CMapStringToString* result)
//   do_calc on a return held as XML text: reads boxes["zxml"] and writes the
//   new text to result["zxml"]. prefix is not read; result may be boxes (a
//   null result means boxes). Returns 1.
//
// int do_validate(CMapStringToString* boxes, CXMLVar* errors)
//   Builds the return document the boxes would be filed in (from the template
//   ctv3_16.xml, written to t.xml in the temporary folder), runs every business
//   rule and then the schema checks, and appends to the host's node one "Error"
//   child per failure, each with a "Text" child: rule errors first. What the
//   node held stays. Returns 1. Without the template there is nothing to check
//   and no error at all, so a host must make sure the template is found.
//
// int ct600lib_submission(CMapStringToString* boxes, const char* senderId,
//                         const char* password, const char* vendorId, int test,
//                         CString* message)
//   The message that files the return with HMRC's gateway: the return
//   document exactly as do_validate builds it from the boxes (attachments
//   included), inside the full GovTalk envelope 2.0 (class HMRC-CT-CT600,
//   function submit, GatewayTest 1 when test is non-zero, else 0; SenderID and
//   a clear-text Authentication/Value from senderId and password; the vendor
//   id as ChannelRouting/Channel/URI; the tax reference as a UTR key), with an
//   IRheader (the UTR key, the period end, GBP, Sender Company) and its IRmark
//   filled in. message receives the text, ISO-8859-1, declared as such; the
//   IRmark holds for exactly those bytes. The box map is only read.
//   Credentials are never taken from the box map: a null or empty text leaves
//   its element empty. The password stands only in Authentication/Value of the
//   text given back; nothing is logged of it, and no file is written with it
//   (the validation copy t.xml is written as do_validate writes it, without
//   the envelope). The attachments are what do_validate places: fixed bodies
//   of the right kind, not the files. Returns 1, or 0 with message emptied when
//   the template is missing.
//
// void LiabilityCalc(CMapStringToString* boxes)
//   A second-generation run (ct600_05) kept for what it leaves: the changed box
//   map and the worked report. Its errors are dropped.
//
// CTime AtoT(const char* date)
//   "dd/mm/yyyy" (two-digit years widened: 0-79 to 20xx, 80-99 to 19xx) at
//   12:00:00 of that day. A text that is no date gives 1 January 1900.
//
// void ct600lib_set_message_sink(void (*sink)(const char* text, void* context), void* context)
// void ct600lib_set_log_sink(void (*sink)(const char* line, void* context), void* context)
//   Where messages (such as a return period above twelve months; default:
//   one line on standard error) and log lines (default: the log file) go. The
//   sink is called on the calling thread during an export; the text lives only
//   for the call. A null sink restores the default.
//
// Environment, read on every call
//   CT600_TEMP_DIR      temporary folder for calc.htm, ctcharge.xml, t.xml
//                       (default: the system's temporary folder + /ct600)
//   CT600_TEMPLATE_DIR  folder of form templates (default: <prefix>/share/ct600/
//                       templates as configured at build time; set it when the
//                       library is installed elsewhere)
//   CT600_FORMATS_DIR   folder of style sheets (default: the template folder)
//   CT600_SUITE_DIR     the suite's own folder (default: the template folder)
//   CT600_LOG_FILE      log file (default: ct600.log in the temporary folder)
//   CT600_TODAY         today's date, dd/mm/yyyy or yyyy-mm-dd, for reproducible
//                       validation (default: the system clock)
//   CT600_RATES         "current": third-generation returns are charged, and
//                       their message built and validated, by current law (from
//                       FY2023 the small profits rate, marginal relief in Q435,
//                       associated companies in Q326 to Q328, the tick Q329).
//                       A return's own box "rates" wins when it holds text.
//                       Anything else: the default ladder, as before.
#pragma once

#include "entry/exports.h"

// The filing message; see above.
extern "C" CT600_EXPORT int ct600lib_submission(CMapStringToString* boxes, const char* senderId,
                                                const char* password, const char* vendorId, int test,
                                                CString* message);
