--TEST--
A forked process goes on calling
--SKIPIF--
<?php if (!function_exists('pcntl_fork')) echo 'skip without pcntl'; ?>
--FILE--
<?php
$client = new Vexorapi\Client;
echo $client->call('HX_Adapter_GetCount')['RetVal'], "\n";
$child = pcntl_fork();
if ($child === 0) {
    exit($client->call('HX_Adapter_GetCount')['RetVal']);
}
pcntl_waitpid($child, $status);
echo pcntl_wexitstatus($status), "\n";
echo $client->call('HX_Adapter_GetCount')['RetVal'], "\n";
?>
--EXPECT--
2
2
2
