// What stands between adapters and disks: expanders and port multipliers.
#include "calls/hxsim_list_page.h"
#include "hxraid.h"
#include "model/hxsim_link.h"
#include "model/hxsim_machine.h"
#include "model/hxsim_text.h"

namespace hxsim {
namespace {

void DescribeExpander(const Adapter& adapter, const Expander& expander, Time, Exp_Info& info) {
    info.Link = LinkOf(adapter, expander);
    info.AdapterID = adapter.id;
    info.RouteTableConfigurable = 1;
    info.PhyCount = expander.phy_count;
    info.ExpChangeCount = expander.changes;
    info.MaxRouteIndexes = expander.route_indexes;
    SetPaddedText(info.VendorID, expander.vendor, 8);
    SetPaddedText(info.ProductID, expander.product, 16);
    SetPaddedText(info.ProductRev, expander.revision, 4);
    SetPaddedText(info.ComponentVendorID, expander.component_vendor, 8);
    info.ComponentID = expander.component;
    info.ComponentRevisionID = expander.component_revision;
}

void DescribePortMultiplier(const Adapter& adapter, const PortMultiplier& port_multiplier, Time,
                            PM_Info& info) {
    info.Link = LinkOf(adapter, port_multiplier);
    info.AdapterID = adapter.id;
    info.ProductRevision = port_multiplier.revision;
    info.PMSpecRevision = port_multiplier.standards;
    info.NumberOfPorts = port_multiplier.ports;
    info.VendorId = port_multiplier.vendor;
    info.DeviceId = port_multiplier.device;
}

}  // namespace
}  // namespace hxsim

HX_U8 HX_PD_GetExpanderInfo(HX_U8 AdapterID, Exp_Info_Request* request) {
    return hxsim::List(__func__, AdapterID, request, &Exp_Info_Request::expInfo,
                       &hxsim::Adapter::expanders, hxcodes::Status::kNoExpander,
                       hxsim::DescribeExpander);
}

HX_U8 HX_PD_GetPMInfo(HX_U8 AdapterID, PM_Info_Request* request) {
    return hxsim::List(__func__, AdapterID, request, &PM_Info_Request::pmInfo,
                       &hxsim::Adapter::port_multipliers, hxcodes::Status::kNoPortMultiplier,
                       hxsim::DescribePortMultiplier);
}
