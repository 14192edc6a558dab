--TEST--
Texts with markup come back as they were given
--FILE--
<?php
$client = new Vexorapi\Client;
foreach (["a<&>\"]]>b", '&amp;', "zwei W\u{f6}rter", '</Name>'] as $name) {
    $client->call('HX_LD_SetConfig', ['LD_ID' => 0, 'CacheMode' => 5, 'Name' => $name]);
    var_dump($client->call('HX_LD_GetInfo')['LDInfo'][0]['Name'] === $name);
}
?>
--EXPECT--
bool(true)
bool(true)
bool(true)
bool(true)
