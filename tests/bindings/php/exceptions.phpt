--TEST--
Exceptions have code and sentence, and the nearest name
--FILE--
<?php
$client = new Vexorapi\Client;
function attempt(callable $call): void
{
    try {
        $call();
        echo "nothing was thrown\n";
    } catch (Vexorapi\Exception $thrown) {
        echo get_class($thrown), ' ', $thrown->getCode(), ': ', $thrown->getMessage(), "\n";
    }
}
foreach ([
    ['hx_pd_gethdinf', []],
    ['Frobnicate', []],
    ['HX_LD_Delete', ['LDID' => 1]],
    ['HX_LD_Delete', ['AdapterID' => 256]],
    ['HX_LD_Delete', ['AdapterID' => -1]],
    ['HX_LD_Delete', ['AdapterID' => '0']],
    ['HX_LD_Delete', [3]],
    ['HX_LD_Create', ['Name' => 'sixteen bytes ..']],
    ['HX_LD_Create', ['Name' => "a\0b"]],
    ['HX_LD_Create', ['Name' => "\xff"]],
    ['HX_LD_Create', ['HDIDs' => range(0, 128)]],
    ['HX_LD_Create', ['HDIDs' => 3]],
    ['HX_LD_Create', ['HDIDs' => [65536]]],
    ['HX_LD_Delete', ['LD_ID' => 77]],
] as [$function, $parameters]) {
    attempt(fn() => $client->call($function, $parameters));
}
attempt(fn() => $client->all('HX_Adapter_GetCount'));
try {
    $client->call('HX_LD_Delete', ['LD_ID' => 77]);
} catch (Vexorapi\Refused $refused) {
    echo "$refused->function $refused->name $refused->sentence\n";
}
try {
    $client->call('HX_LD_Delete', ['LDID' => 77]);
} catch (Vexorapi\UnknownParameter $unknown) {
    echo "$unknown->function $unknown->parameter $unknown->nearest\n";
}
?>
--EXPECT--
Vexorapi\UnknownFunction 0: there is no function "hx_pd_gethdinf"; did you mean "HX_PD_GetHDInfo"?
Vexorapi\UnknownFunction 0: there is no function "Frobnicate"
Vexorapi\UnknownParameter 0: HX_LD_Delete has no parameter "LDID"; did you mean "LD_ID"?
Vexorapi\ParameterError 0: HX_LD_Delete: AdapterID is 256; it takes numbers of 8 bits, from 0
Vexorapi\ParameterError 0: HX_LD_Delete: AdapterID is -1; it takes numbers of 8 bits, from 0
Vexorapi\ParameterError 0: HX_LD_Delete: AdapterID takes numbers of type int
Vexorapi\ParameterError 0: HX_LD_Delete: parameters have names
Vexorapi\ParameterError 0: HX_LD_Create: Name is longer than what it takes
Vexorapi\ParameterError 0: HX_LD_Create: Name is no UTF-8 or holds a character that XML cannot carry
Vexorapi\ParameterError 0: HX_LD_Create: Name is no UTF-8 or holds a character that XML cannot carry
Vexorapi\ParameterError 0: HX_LD_Create: HDIDs has more numbers than it takes
Vexorapi\ParameterError 0: HX_LD_Create: HDIDs takes an array of numbers
Vexorapi\ParameterError 0: HX_LD_Create: HDIDs is 65536; it takes numbers of 16 bits, from 0
Vexorapi\Refused 207: HX_LD_Delete was refused with code 207: The adapter has no virtual disk with that ID.
Vexorapi\Exception 0: HX_Adapter_GetCount answers no list of pages
HX_LD_Delete no_virtual_disk The adapter has no virtual disk with that ID.
HX_LD_Delete LDID LD_ID
