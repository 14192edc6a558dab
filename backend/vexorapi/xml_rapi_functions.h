// The rows of all vendor functions.
#pragma once

#include "xml_rapi_function_list.h"
#include "xml_rapi_functions_adapter.h"
#include "xml_rapi_functions_battery.h"
#include "xml_rapi_functions_disk.h"
#include "xml_rapi_functions_disk_group.h"
#include "xml_rapi_functions_enclosure.h"
#include "xml_rapi_functions_flash.h"
#include "xml_rapi_functions_user.h"
#include "xml_rapi_functions_virtual_disk.h"
