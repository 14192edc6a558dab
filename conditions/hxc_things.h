// The objects of one look: their addresses and identities, and whether they could be read.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "conditions/hxc_answers.h"
#include "conditions/hxc_object.h"

namespace hxconditions {

/// The last identity read from each adapter, by its number.
using KnownAdapters = std::map<unsigned, std::string>;

class Things {
public:
    /// `answers` must outlive this object.
    Things(const Answers& answers, const KnownAdapters& known);

    Object Machine() const;
    Object OfStore() const;
    Object OfService() const;
    Object OfSink(const Sink& sink) const;
    Object Of(const Adapter& adapter) const;
    Object BatteryOf(const Adapter& adapter) const;
    Object Of(const Adapter& adapter, const VirtualDisk& virtual_disk) const;
    Object Of(const Adapter& adapter, const DiskGroup& group) const;
    Object Of(const Adapter& adapter, const Disk& disk) const;
    Object Of(const Adapter& adapter, const Enclosure& enclosure) const;
    Object Of(const Adapter& adapter, const Enclosure& enclosure, const Element& element) const;

    const Adapter* FindAdapter(const std::string& identity) const;
    const Adapter* FindAdapter(unsigned number) const;

    /// All objects in the lists.
    const std::vector<Object>& All() const { return all_; }

    /// Whether all answers in `rests_on` (Source bits) were read for the object.
    bool IsRead(const Object& object, unsigned rests_on) const;

private:
    // An object that an adapter numbers, with its address and still the adapter's identity.
    Object OfNumbered(const Adapter& adapter, Kind kind, unsigned id) const;
    // A virtual disk or disk group, whose identity begins with `word`.
    template <class Array>
    Object OfArray(const Adapter& adapter, Kind kind, const char* word, const Array& array) const;

    const Answers& answers_;
    KnownAdapters identities_;
    std::vector<Object> all_;
};

const Disk* FindDisk(const Adapter& adapter, std::optional<unsigned> id);
const DiskGroup* FindGroup(const Adapter& adapter, std::optional<unsigned> id);

}  // namespace hxconditions
