// The record writers of the controller library's records.
#include "xml_rapi_records.h"

int XML_RA_Version_Info(XMLWR_Doc* doc, const char* elmt, const Version_Info* records,
                        HX_U32 count) {
    return WriteRecords<kVersion_Info>(doc, elmt, records, count);
}

int XML_RA_Version_Info_CIM(XMLWR_Doc* doc, const char* elmt, const Version_Info_CIM* records,
                            HX_U32 count) {
    return WriteRecords<kVersion_Info_CIM>(doc, elmt, records, count);
}

int XML_RA_Adapter_Info(XMLWR_Doc* doc, const char* elmt, const Adapter_Info* records,
                        HX_U32 count) {
    return WriteRecords<kAdapter_Info>(doc, elmt, records, count);
}
