--TEST--
A logon tells the group, and no trace shows the password
--FILE--
<?php
$client = new Vexorapi\Client;
var_dump($client->logon('admin', 'raid & roll'));
foreach (['secret', str_repeat('secret', 30)] as $password) {
    try {
        $client->logon('admin', $password);
    } catch (Vexorapi\Exception $thrown) {
        echo get_class($thrown), ' ', $thrown->getCode(), ': ', $thrown->getMessage(), "\n";
        var_dump(str_contains((string)$thrown, 'secret'));
    }
}
?>
--EXPECT--
enum(Vexorapi\Group::Administrator)
Vexorapi\LogonFailed 3: wrong password
bool(false)
Vexorapi\ParameterError 0: HX_LogonUser: lpszPassword is longer than what it takes
bool(false)
