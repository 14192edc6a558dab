// The vendor functions in table order. A function is known to the library when it stands here.
#pragma once

#include <cstddef>

#include "xml_rapi_adapter.h"

/// One function with the names of its handlers and its result writer.
template <const auto& kFunction, XML_StartElementHandler start, XML_EndElementHandler end,
          auto result>
struct TableEntry {
    static constexpr const auto& kRows = kFunction;
    static constexpr XML_StartElementHandler kStart = start;
    static constexpr XML_EndElementHandler kEnd = end;

    /// Performs the function on the request's record and writes its result.
    static void Execute(XMLElement* elmt, XMLWR_Doc* doc) {
        if (kFunction.call(RequestRecord<kFunction>(elmt))) result(elmt, doc);
    }
};

inline constexpr std::tuple<TableEntry<kHX_API_Version, XML_HX_API_Version_SEH,
                                       XML_HX_API_Version_EEH, XML_HX_API_Version_Ret>,
                            TableEntry<kHX_Adapter_GetCount, XML_HX_Adapter_GetCount_SEH,
                                       XML_HX_Adapter_GetCount_EEH, XML_HX_Adapter_GetCount_Ret>,
                            TableEntry<kHX_Adapter_GetInfo, XML_HX_Adapter_GetInfo_SEH,
                                       XML_HX_Adapter_GetInfo_EEH, XML_HX_Adapter_GetInfo_Ret>>
    kFunctions;

inline constexpr std::size_t kFunctionCount = std::tuple_size_v<decltype(kFunctions)>;

/// The position in kFunctions of the function called `name`, exactly; kFunctionCount when it is
/// none of them.
std::size_t FindFunction(const char* name);
