--TEST--
Records, numbers, texts, truth values, arrays and lists
--FILE--
<?php
$client = new Vexorapi\Client;
$disk = $client->call('HX_PD_GetHDInfo', ['AdapterID' => 0, 'numRequested' => 1])['HD_Info'][0];
var_dump($disk['Model'], $disk['Size'], $disk['Link']['Parent']['DevType']);
echo implode(' ', $disk['WWN']), "\n";
var_dump($client->call('HX_PD_GetSmartStatus', ['numRequested' => 1])['HD_SMART_Status']);
$adapters = $client->call('HX_Adapter_GetInfo', ['AdapterID' => 1])['AdapterInfo'];
echo count($adapters), ' ', count($adapters[0]['PortSasAddress']), "\n";
var_dump($client->call('HX_PD_GetPMInfo')['PM_Info']);
var_dump($client->call('HX_AdapterMute', ['AdapterID' => 0]));
echo implode(' ', array_map(fn($disk) => $disk['Link']['Self']['DevID'],
                            $client->all('HX_PD_GetHDInfo', ['AdapterID' => 0]))), "\n";
?>
--EXPECT--
string(8) "TW600S10"
int(1172123568)
int(2)
80 164 133 131 0 0 0 0
array(1) {
  [0]=>
  array(2) {
    ["SmartThresholdExceeded"]=>
    bool(false)
    ["HDID"]=>
    int(0)
  }
}
1 4
array(0) {
}
array(0) {
}
0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 16
