// The codes that the machine's rows, rules and calls use, without their namespace.
#pragma once

#include "codes/activity.h"
#include "codes/battery.h"
#include "codes/device.h"
#include "codes/disk.h"
#include "codes/enclosure.h"
#include "codes/event.h"
#include "codes/event_sentence.h"
#include "codes/flash.h"
#include "codes/level.h"
#include "codes/rate.h"
#include "codes/state.h"
#include "codes/status.h"
#include "codes/virtual_disk.h"

namespace hxsim {

using hxcodes::ActivityKind;
using hxcodes::ActivityState;
using hxcodes::AtRebuild;
using hxcodes::BatteryBit;
using hxcodes::BatteryFeature;
using hxcodes::BlockBit;
using hxcodes::CacheBit;
using hxcodes::CheckType;
using hxcodes::ConnectionType;
using hxcodes::ControlAction;
using hxcodes::Device;
using hxcodes::DiskAction;
using hxcodes::DiskBit;
using hxcodes::DiskFeature;
using hxcodes::DiskType;
using hxcodes::Effect;
using hxcodes::ElementStatus;
using hxcodes::ElementType;
using hxcodes::EventKind;
using hxcodes::EventParams;
using hxcodes::Image;
using hxcodes::Init;
using hxcodes::Level;
using hxcodes::LevelRow;
using hxcodes::LinkSpeed;
using hxcodes::NumberOf;
using hxcodes::ParamsOfDegraded;
using hxcodes::Power;
using hxcodes::Rate;
using hxcodes::RebuildType;
using hxcodes::RemapReason;
using hxcodes::Rounding;
using hxcodes::RunsOn;
using hxcodes::Spread;
using hxcodes::State;
using hxcodes::Status;
using hxcodes::Step;
using hxcodes::ToCode;

}  // namespace hxsim
