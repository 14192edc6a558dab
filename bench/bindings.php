<?php

// The PHP side of bench/bindings: php bindings.php WHAT CALLS prints the nanoseconds of the
// processor that one call takes.

$small = '<HX_Adapter_GetCount type="function"/>';
$disks = '<HX_PD_GetHDInfo type="function"><requestType>1</requestType><numRequested>128</numRequested>'
    . '</HX_PD_GetHDInfo>';
$client = new Vexorapi\Client;
$text = vexorapi_call($disks);
$works = [
    'small' => fn() => vexorapi_call($small),
    'disks' => fn() => vexorapi_call($disks),
    'typed' => fn() => $client->call('HX_PD_GetHDInfo', ['numRequested' => 128]),
    // What a front end did without the extension's class: the same values out of the same text.
    'simplexml' => fn() => array_map(
        fn($disk) => json_decode(json_encode($disk), true),
        iterator_to_array(simplexml_load_string(vexorapi_call($disks), options: LIBXML_NOCDATA)->HD_Info, false)),
    'simplexml_alone' => fn() => simplexml_load_string($text),
];
$work = $works[$argv[1]];
$calls = (int)$argv[2];
function processor_time(): float
{
    $usage = getrusage();
    return 1e9 * ($usage['ru_utime.tv_sec'] + $usage['ru_stime.tv_sec'])
        + 1e3 * ($usage['ru_utime.tv_usec'] + $usage['ru_stime.tv_usec']);
}

$work();
$start = processor_time();
for ($i = 0; $i < $calls; ++$i) {
    $work();
}
printf("%.1f\n", (processor_time() - $start) / $calls);
