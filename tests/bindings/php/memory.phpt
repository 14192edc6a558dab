--TEST--
Calls keep no memory
--FILE--
<?php
function everything(Vexorapi\Client $client): void
{
    vexorapi_call('<HX_Adapter_GetCount type="function"/>');
    $client->call('HX_PD_GetHDInfo', ['numRequested' => 2]);
    foreach ([['HX_LD_Delete', ['LD_ID' => 77]], ['HX_LD_Delete', ['LDID' => 1]], ['Nothing', []],
              ['HX_LD_Create', ['Name' => "\xff"]]] as [$function, $parameters]) {
        try {
            $client->call($function, $parameters);
        } catch (Vexorapi\Exception) {
        }
    }
    foreach ($client->events() as $event) {
    }
}
$client = new Vexorapi\Client;
everything($client);
$before = memory_get_usage();
for ($i = 0; $i < (int)(getenv('VEXORAPI_ROUNDS') ?: 20); ++$i) {
    everything($client);
}
var_dump(memory_get_usage() - $before);
?>
--EXPECT--
int(0)
