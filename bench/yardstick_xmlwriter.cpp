// Disks by libxml2's xmlTextWriter.
#include <libxml/tree.h>
#include <libxml/xmlwriter.h>

#include <cstring>
#include <string>

#include "yardsticks.h"

namespace {

const xmlChar* Xml(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

void Start(xmlTextWriterPtr out, const char* name, const char* type) {
    xmlTextWriterStartElement(out, Xml(name));
    xmlTextWriterWriteAttribute(out, Xml("type"), Xml(type));
}

void Number(xmlTextWriterPtr out, const char* name, const char* type, unsigned long long value) {
    Start(out, name, type);
    xmlTextWriterWriteFormatString(out, "%llu", value);
    xmlTextWriterEndElement(out);
}

// The writer indents elements and not text, so that the line of items is indented here.
void EightBytes(xmlTextWriterPtr out, const char* name, const HX_U8 (&bytes)[8], int depth) {
    Start(out, name, "U8");
    xmlTextWriterWriteAttribute(out, Xml("width"), Xml("8"));
    xmlTextWriterWriteFormatString(out, "\n%*s", 2 * (depth + 1), "");
    for (int i = 0; i < 7; ++i) xmlTextWriterWriteFormatString(out, "%u ", bytes[i]);
    xmlTextWriterWriteFormatString(out, "%u\n%*s", bytes[7], 2 * depth, "");
    xmlTextWriterEndElement(out);
}

template <std::size_t n>
void DiskText(xmlTextWriterPtr out, const char* name, const char (&field)[n], bool without_maker) {
    std::string text(field, strnlen(field, n));
    text.erase(text.find_last_not_of(' ') + 1);
    if (without_maker) text.erase(0, text.find(' ') + 1);
    Start(out, name, "string");
    xmlTextWriterWriteCDATA(out, Xml(text.c_str()));
    xmlTextWriterEndElement(out);
}

void Endpoint(xmlTextWriterPtr out, const char* name, const Link_Endpoint& end) {
    Start(out, name, "struct Link_Endpoint");
    Number(out, "DevID", "U16", end.DevID);
    Number(out, "DevType", "U8", end.DevType);
    Number(out, "PhyCnt", "U8", end.PhyCnt);
    EightBytes(out, "PhyID", end.PhyID, 4);
    EightBytes(out, "SAS_Address", end.SAS_Address, 4);
    Number(out, "EnclosureID", "U16", end.EnclosureID);
    xmlTextWriterEndElement(out);
}

void Disk(xmlTextWriterPtr out, const char* name, const HD_Info& disk) {
    Start(out, name, "struct HD_Info");
    Start(out, "Link", "struct Link_Entity");
    Endpoint(out, "Parent", disk.Link.Parent);
    Endpoint(out, "Self", disk.Link.Self);
    xmlTextWriterEndElement(out);
    Number(out, "AdapterID", "U8", disk.AdapterID);
    Number(out, "Status", "U8", disk.Status);
    Number(out, "HDType", "U8", disk.HDType);
    Number(out, "PIOMode", "U8", disk.PIOMode);
    Number(out, "MDMAMode", "U8", disk.MDMAMode);
    Number(out, "UDMAMode", "U8", disk.UDMAMode);
    Number(out, "ConnectionType", "U8", disk.ConnectionType);
    Number(out, "DeviceType", "U8", disk.DeviceType);
    Number(out, "CanLogicalUsed", "U8", disk.DeviceType == 0 ? 1 : 0);
    Number(out, "FeatureSupport", "U32", disk.FeatureSupport);
    Number(out, "CurrentPIOMode", "U8", disk.CurrentPIOMode);
    Number(out, "CurrentMDMAMode", "U8", disk.CurrentMDMAMode);
    Number(out, "CurrentUDMAMode", "U8", disk.CurrentUDMAMode);
    DiskText(out, "Model", disk.Model, true);
    DiskText(out, "SerialNo", disk.SerialNo, false);
    DiskText(out, "FWVersion", disk.FWVersion, false);
    EightBytes(out, "WWN", disk.WWN, 2);
    Number(out, "Size", "U64", disk.Size.value);
    Number(out, "ActivityLEDStatus", "U8", disk.ActivityLEDStatus);
    Number(out, "LocateLEDStatus", "U8", disk.LocateLEDStatus);
    Number(out, "ErrorLEDStatus", "U8", disk.ErrorLEDStatus);
    xmlTextWriterEndElement(out);
}

}  // namespace

yardstick::XmlTextWriterDisks::XmlTextWriterDisks() : buffer_(xmlBufferCreate()) {}

yardstick::XmlTextWriterDisks::~XmlTextWriterDisks() {
    xmlBufferFree(static_cast<xmlBufferPtr>(buffer_));
}

std::string_view yardstick::XmlTextWriterDisks::Write(const char* element, HD_Info* records,
                                                      unsigned count) {
    auto* const buffer = static_cast<xmlBufferPtr>(buffer_);
    xmlBufferEmpty(buffer);
    const xmlTextWriterPtr out = xmlNewTextWriterMemory(buffer, 0);
    xmlTextWriterSetIndent(out, 1);
    xmlTextWriterSetIndentString(out, Xml("  "));
    xmlTextWriterStartElement(out, Xml("r"));
    for (unsigned i = 0; i < count; ++i) Disk(out, element, records[i]);
    xmlTextWriterEndElement(out);
    xmlFreeTextWriter(out);  // which writes out what it holds
    std::string_view text(reinterpret_cast<const char*>(xmlBufferContent(buffer)),
                          static_cast<std::size_t>(xmlBufferLength(buffer)));
    text.remove_prefix(std::strlen("<r>\n"));
    text.remove_suffix(std::strlen("</r>\n"));
    return text;
}
