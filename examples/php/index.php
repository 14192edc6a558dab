<?php

// One page that lists disks and virtual disks, polls the change counters and follows the events, by the
// extension "vexorapi". It shows and changes nothing: put it behind a logon before others can reach it.
//
//   /            the page
//   /?counters   the change counters, as JSON
//   /?events=N   the stored events from number N on, as JSON

declare(strict_types=1);

/** Names, models and events are data from outside: whatever is shown goes through here. */
function text(mixed $value): string
{
    return htmlspecialchars((string)$value, ENT_QUOTES | ENT_SUBSTITUTE);
}

function gib(int $sectors): string
{
    return number_format($sectors * 512 / 2 ** 30, 1) . ' GiB';
}

function answer(int $status, array $data): never
{
    http_response_code($status);
    header('Content-Type: application/json');
    header('Cache-Control: no-store');
    echo json_encode($data, JSON_INVALID_UTF8_SUBSTITUTE | JSON_THROW_ON_ERROR);
    exit;
}

$client = new Vexorapi\Client;
try {
    if (isset($_GET['counters'])) {
        answer(200, $client->counters());
    }
    if (isset($_GET['events'])) {
        $from = filter_var($_GET['events'], FILTER_VALIDATE_INT,
                           ['options' => ['min_range' => 0, 'max_range' => 4294967294]]);
        if ($from === false) {
            answer(400, ['error' => 'events is the number of an event']);
        }
        $events = [];
        foreach ($client->events($from) as $number => $event) {
            $events[] = ['number' => $number, 'text' => trim($event['Event'])];
        }
        answer(200, $events);
    }
    $disks = $drives = [];
    for ($adapter = 0; $adapter < $client->call('HX_Adapter_GetCount')['RetVal']; ++$adapter) {
        array_push($disks, ...$client->all('HX_PD_GetHDInfo', ['AdapterID' => $adapter]));
        foreach ($client->all('HX_LD_GetInfo', ['AdapterID' => $adapter]) as $drive) {
            $drives[] = ['AdapterID' => $adapter] + $drive;
        }
    }
} catch (Vexorapi\Exception $thrown) {
    answer(503, ['error' => $thrown->getMessage()]);
}

$nonce = base64_encode(random_bytes(16));
header("Content-Security-Policy: default-src 'none'; connect-src 'self'; script-src 'nonce-$nonce'");
header('Cache-Control: no-store');
?>
<!DOCTYPE html>
<html lang="en">
<meta charset="utf-8">
<title>RAID</title>
<h1>RAID</h1>
<h2>Virtual disks</h2>
<table>
<tr><th>Adapter<th>Virtual disk<th>Name<th>Size
<?php foreach ($drives as $drive): ?>
<tr class="drive"><td><?= text($drive['AdapterID']) ?><td><?= text($drive['ID']) ?>
    <td><?= text($drive['Name']) ?><td><?= text(gib($drive['Size'])) ?>

<?php endforeach ?>
</table>
<h2>Disks</h2>
<table>
<tr><th>Adapter<th>Disk<th>Model<th>Serial number<th>Size
<?php foreach ($disks as $disk): ?>
<tr class="disk"><td><?= text($disk['AdapterID']) ?><td><?= text($disk['Link']['Self']['DevID']) ?>
    <td><?= text($disk['Model']) ?><td><?= text($disk['SerialNo']) ?><td><?= text(gib($disk['Size'])) ?>

<?php endforeach ?>
</table>
<p>Changes: <output id="changes">unknown</output></p>
<h2>Events</h2>
<ol id="events"></ol>
<p id="trouble" role="alert"></p>
<script nonce="<?= text($nonce) ?>">
let next = 0;
let changes = null;

async function ask(query) {
    const response = await fetch(query);
    const answer = await response.json();
    if (!response.ok) throw new Error(answer.error);
    return answer;
}

// Texts are set as text, never as markup. The counters are cheap: events are asked for when they differ.
async function look() {
    try {
        const count = (await ask('?counters')).Whatever_Change;
        if (count !== changes) {
            for (const event of await ask('?events=' + next)) {
                const item = document.createElement('li');
                item.value = event.number;
                item.textContent = event.text;
                document.getElementById('events').prepend(item);
                next = event.number + 1;
            }
            changes = count;
            document.getElementById('changes').textContent = count;
        }
        document.getElementById('trouble').textContent = '';
    } catch (error) {
        document.getElementById('changes').textContent = 'unknown';
        document.getElementById('trouble').textContent = error.message;
    }
    setTimeout(look, 2000);
}
look();
</script>
</html>
