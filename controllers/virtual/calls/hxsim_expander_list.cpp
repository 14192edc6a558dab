// The calls that list expanders and port multipliers.
#include "calls/hxsim_expander_record.h"  // IWYU pragma: keep: the list looks for Describe
#include "calls/hxsim_list_page.h"
#include "hxraid.h"

HX_U8 HX_PD_GetExpanderInfo(HX_U8 AdapterID, Exp_Info_Request* request) {
    return hxsim::List(__func__, AdapterID, request, &Exp_Info_Request::expInfo,
                       &hxsim::Adapter::expanders, hxcodes::Status::kNoExpander);
}

HX_U8 HX_PD_GetPMInfo(HX_U8 AdapterID, PM_Info_Request* request) {
    return hxsim::List(__func__, AdapterID, request, &PM_Info_Request::pmInfo,
                       &hxsim::Adapter::port_multipliers, hxcodes::Status::kNoPortMultiplier);
}
