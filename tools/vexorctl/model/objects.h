// The objects of the adapters, each as the library's records tell of it: what the nouns list, and
// what other commands look up.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "model/address.h"
#include "model/controller.h"
#include "model/value.h"
#include "output/cell.h"

// An object's records. One that could not be had is empty: its fields are unknown.
struct Adapter {
    Address address;
    Value info;
    Value config;
};

struct Disk {
    Address address;
    Value info;
    Value config;
    Value smart;
    Value raid;
    Value activity;
    Value free_space;
    std::optional<bool> boot_record;
    std::optional<unsigned> group;  // that it serves, as a member or as a spare
};

struct VirtualDisk {
    Address address;
    Value info;
    Value config;
    Value status;
    std::vector<std::uint64_t> disks;
};

struct DiskGroup {
    Address address;
    Value info;
    Value config;
};

struct Enclosure {
    Address address;
    Value info;
};

struct Element {
    Address address;
    Value info;
    Value config;
};

struct Battery {
    Address address;  // the adapter's
    Value info;
};

/// A background activity; its address is that of the object on which it runs.
struct Task {
    Address address;
    std::uint64_t activity = 0;
    std::uint64_t state = 0;
    std::optional<std::uint64_t> percent;
    std::string name;               // of the object
    std::optional<unsigned> group;  // on which the object lies
};

/// Whether a task of the object is meant by this address: its own, or that of the disk group on
/// which it lies.
bool IsTaskOf(const Task& task, std::string_view address);

// Everything on the adapters that the controller has selected. What cannot be read is noted as a
// fault.
std::vector<Adapter> LoadAdapters(Controller& controller);
std::vector<Disk> LoadDisks(Controller& controller);
std::vector<VirtualDisk> LoadVirtualDisks(Controller& controller);
std::vector<DiskGroup> LoadDiskGroups(Controller& controller);
std::vector<Enclosure> LoadEnclosures(Controller& controller);
std::vector<Element> LoadElements(Controller& controller);
std::vector<Battery> LoadBatteries(Controller& controller);
std::vector<Task> LoadTasks(Controller& controller);

// The state of an object in one word.
std::string DiskState(const Disk& disk);

// Cells from records: unknown where the record has no such element.
Cell NumberAt(const Value& value, std::string_view path);
Cell SectorsAt(const Value& value, std::string_view path);
Cell TextAt(const Value& value, std::string_view path);
Cell CodeAt(const Value& value, std::string_view path, std::span<const HxraidName> names);
Cell BitsAt(const Value& value, std::string_view path, std::span<const HxraidName> names);
/// Eight bytes as sixteen hexadecimal digits.
Cell WwnAt(const Value& value, std::string_view path);
/// "4.1.0.1350"
Cell VersionAt(const Value& value, std::string_view path);
/// The first `count` numbers of an array.
Cell NumbersAt(const Value& value, std::string_view path, std::uint64_t count);
