--TEST--
Events are numbered, and a store that cannot be read is not empty
--FILE--
<?php
$client = new Vexorapi\Client;
$events = iterator_to_array($client->events());
var_dump(count($events) >= 2, array_keys($events) === range(0, count($events) - 1));
var_dump(iterator_to_array($client->events(1)) === array_slice($events, 1, null, true));
$following = $client->events(count($events));
var_dump($following->valid());
$following->next();
var_dump($following->valid());
var_dump(array_keys($client->counters())[0]);
try {
    $client->events(-1);
} catch (ValueError $error) {
    echo $error->getMessage(), "\n";
}
rename(getenv('VEXORAPI_ROOT') . '/opt', getenv('VEXORAPI_ROOT') . '/away');
try {
    foreach ($client->events() as $event) {
        echo "an event\n";
    }
} catch (Vexorapi\StoreUnreadable $error) {
    echo $error->getMessage(), "\n";
}
rename(getenv('VEXORAPI_ROOT') . '/away', getenv('VEXORAPI_ROOT') . '/opt');
?>
--EXPECT--
bool(true)
bool(true)
bool(true)
bool(false)
bool(false)
string(15) "Whatever_Change"
Vexorapi\Client::events(): Argument #1 ($from) must be the number of an event
the event store cannot be read
