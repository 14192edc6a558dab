// Fills the records of expanders and port multipliers.
#include "calls/hxsim_expander_record.h"

#include "model/hxsim_link.h"
#include "model/hxsim_record_bytes.h"
#include "model/hxsim_text.h"

namespace hxsim {

void Describe(const Adapter& adapter, const Expander& expander, Time, Exp_Info& info) {
    SetLink(info.Link, adapter, expander);
    info.AdapterID = adapter.id;
    info.Configuring = 0;  // its routes are complete from the start
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
    SetZero(info.Reserved);
}

void Describe(const Adapter& adapter, const PortMultiplier& port_multiplier, Time, PM_Info& info) {
    SetLink(info.Link, adapter, port_multiplier);
    info.AdapterID = adapter.id;
    info.ProductRevision = port_multiplier.revision;
    info.PMSpecRevision = port_multiplier.standards;
    info.NumberOfPorts = port_multiplier.ports;
    info.VendorId = port_multiplier.vendor;
    info.DeviceId = port_multiplier.device;
    SetZero(info.Reserved);
}

}  // namespace hxsim
