// The tables of a state file of version 1, as hxsimctl init made them. Such files are out there, so
// this never changes: the tables of a later version are made of these by the steps in
// hxsim_upgrade.h.
#pragma once

namespace hxsim {

inline constexpr const char* kTablesOfVersion1 = R"(
CREATE TABLE machine (seed INTEGER NOT NULL, random INTEGER NOT NULL, topology TEXT NOT NULL, only
    INTEGER PRIMARY KEY CHECK (only = 1)) STRICT;
CREATE TABLE clock (start INTEGER NOT NULL, real INTEGER NOT NULL, speed INTEGER NOT NULL, only
    INTEGER PRIMARY KEY CHECK (only = 1)) STRICT;
CREATE TABLE adapter (id INTEGER NOT NULL, info BLOB NOT NULL, config BLOB NOT NULL, alarm INTEGER
    NOT NULL, muted INTEGER NOT NULL, next_event INTEGER NOT NULL, PRIMARY KEY (id)) STRICT,
    WITHOUT ROWID;
CREATE TABLE injection (id INTEGER NOT NULL, call TEXT NOT NULL, code INTEGER NOT NULL, times
    INTEGER NOT NULL, let_through INTEGER NOT NULL, on_adapter INTEGER NOT NULL, hostile INTEGER
    NOT NULL, PRIMARY KEY (id)) STRICT, WITHOUT ROWID;
CREATE TABLE disk (adapter INTEGER NOT NULL, id INTEGER NOT NULL, parent INTEGER NOT NULL,
    parent_id INTEGER NOT NULL, phy INTEGER NOT NULL, phys INTEGER NOT NULL, enclosure INTEGER NOT
    NULL, slot INTEGER NOT NULL, model TEXT NOT NULL, firmware TEXT NOT NULL, serial TEXT NOT
    NULL, wwn INTEGER NOT NULL, sectors INTEGER NOT NULL, sas INTEGER NOT NULL, speed INTEGER NOT
    NULL, present INTEGER NOT NULL, failed INTEGER NOT NULL, offline INTEGER NOT NULL, is_foreign
    INTEGER NOT NULL, spare INTEGER NOT NULL, spare_group INTEGER NOT NULL, spare_before INTEGER
    NOT NULL, spare_group_before INTEGER NOT NULL, smart_on INTEGER NOT NULL, smart_exceeded
    INTEGER NOT NULL, write_cache INTEGER NOT NULL, has_mbr INTEGER NOT NULL, has_system INTEGER
    NOT NULL, locate_light INTEGER NOT NULL, PRIMARY KEY (adapter, id)) STRICT, WITHOUT ROWID;
CREATE TABLE block (adapter INTEGER NOT NULL, id INTEGER NOT NULL, disk INTEGER NOT NULL,
    virtual_disk INTEGER NOT NULL, position INTEGER NOT NULL, target INTEGER NOT NULL, state
    INTEGER NOT NULL, start INTEGER NOT NULL, sectors INTEGER NOT NULL, PRIMARY KEY (adapter, id))
    STRICT, WITHOUT ROWID;
CREATE TABLE virtual_disk (adapter INTEGER NOT NULL, id INTEGER NOT NULL, name TEXT NOT NULL,
    disk_group INTEGER NOT NULL, slot INTEGER NOT NULL, level INTEGER NOT NULL, legs INTEGER NOT
    NULL, width INTEGER NOT NULL, stripe_kib INTEGER NOT NULL, cache INTEGER NOT NULL, coefficient
    INTEGER NOT NULL, size INTEGER NOT NULL, auto_rebuild INTEGER NOT NULL, is_foreign INTEGER NOT
    NULL, initialised INTEGER NOT NULL, errors INTEGER NOT NULL, state INTEGER NOT NULL, PRIMARY
    KEY (adapter, id)) STRICT, WITHOUT ROWID;
CREATE TABLE disk_group (adapter INTEGER NOT NULL, id INTEGER NOT NULL, name TEXT NOT NULL, level
    INTEGER NOT NULL, legs INTEGER NOT NULL, width INTEGER NOT NULL, stripe_kib INTEGER NOT NULL,
    write_cache INTEGER NOT NULL, state INTEGER NOT NULL, PRIMARY KEY (adapter, id)) STRICT,
    WITHOUT ROWID;
CREATE TABLE home (adapter INTEGER NOT NULL, kind INTEGER NOT NULL, owner INTEGER NOT NULL,
    position INTEGER NOT NULL, disk INTEGER NOT NULL, home INTEGER NOT NULL, PRIMARY KEY (adapter,
    kind, owner, position)) STRICT, WITHOUT ROWID;
CREATE TABLE activity (adapter INTEGER NOT NULL, id INTEGER NOT NULL, kind INTEGER NOT NULL, state
    INTEGER NOT NULL, owner_kind INTEGER NOT NULL, owner INTEGER NOT NULL, total INTEGER NOT NULL,
    done INTEGER NOT NULL, since INTEGER NOT NULL, speed INTEGER NOT NULL, announced INTEGER NOT
    NULL, found INTEGER NOT NULL, level INTEGER NOT NULL, legs INTEGER NOT NULL, width INTEGER NOT
    NULL, stripe_kib INTEGER NOT NULL, size INTEGER NOT NULL, PRIMARY KEY (adapter, id)) STRICT,
    WITHOUT ROWID;
CREATE TABLE remap (adapter INTEGER NOT NULL, disk INTEGER NOT NULL, lba INTEGER NOT NULL, sectors
    INTEGER NOT NULL, reason INTEGER NOT NULL, PRIMARY KEY (adapter, disk, lba)) STRICT, WITHOUT
    ROWID;
CREATE TABLE expander (adapter INTEGER NOT NULL, id INTEGER NOT NULL, parent INTEGER NOT NULL,
    parent_id INTEGER NOT NULL, phy INTEGER NOT NULL, phys INTEGER NOT NULL, enclosure INTEGER NOT
    NULL, phy_count INTEGER NOT NULL, route_indexes INTEGER NOT NULL, changes INTEGER NOT NULL,
    vendor TEXT NOT NULL, product TEXT NOT NULL, revision TEXT NOT NULL, component_vendor TEXT NOT
    NULL, component INTEGER NOT NULL, component_revision INTEGER NOT NULL, PRIMARY KEY (adapter,
    id)) STRICT, WITHOUT ROWID;
CREATE TABLE port_multiplier (adapter INTEGER NOT NULL, id INTEGER NOT NULL, parent INTEGER NOT
    NULL, parent_id INTEGER NOT NULL, phy INTEGER NOT NULL, phys INTEGER NOT NULL, ports INTEGER
    NOT NULL, revision INTEGER NOT NULL, standards INTEGER NOT NULL, vendor INTEGER NOT NULL,
    device INTEGER NOT NULL, PRIMARY KEY (adapter, id)) STRICT, WITHOUT ROWID;
CREATE TABLE enclosure (adapter INTEGER NOT NULL, id INTEGER NOT NULL, parent INTEGER NOT NULL,
    parent_id INTEGER NOT NULL, phy INTEGER NOT NULL, phys INTEGER NOT NULL, vendor TEXT NOT NULL,
    product TEXT NOT NULL, revision TEXT NOT NULL, PRIMARY KEY (adapter, id)) STRICT, WITHOUT
    ROWID;
CREATE TABLE element (adapter INTEGER NOT NULL, enclosure INTEGER NOT NULL, number INTEGER NOT
    NULL, type INTEGER NOT NULL, status INTEGER NOT NULL, reading INTEGER NOT NULL, nominal
    INTEGER NOT NULL, speed_code INTEGER NOT NULL, muted INTEGER NOT NULL, high_critical INTEGER
    NOT NULL, high_warning INTEGER NOT NULL, low_critical INTEGER NOT NULL, low_warning INTEGER
    NOT NULL, PRIMARY KEY (adapter, enclosure, number)) STRICT, WITHOUT ROWID;
CREATE TABLE battery (adapter INTEGER NOT NULL, info BLOB NOT NULL, phase INTEGER NOT NULL, since
    INTEGER NOT NULL, charge_at_since INTEGER NOT NULL, switched_on INTEGER NOT NULL, present
    INTEGER NOT NULL, PRIMARY KEY (adapter)) STRICT, WITHOUT ROWID;
CREATE TABLE flash_image (adapter INTEGER NOT NULL, type INTEGER NOT NULL, erased INTEGER NOT
    NULL, healthy INTEGER NOT NULL, written INTEGER NOT NULL, data BLOB, PRIMARY KEY (adapter,
    type)) STRICT, WITHOUT ROWID;
CREATE TABLE event (adapter INTEGER NOT NULL, number INTEGER NOT NULL, event BLOB NOT NULL,
    PRIMARY KEY (adapter, number)) STRICT, WITHOUT ROWID;
)";

}  // namespace hxsim
