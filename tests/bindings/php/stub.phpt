--TEST--
The stub says what the extension has
--FILE--
<?php
$stub = file_get_contents(getenv('VEXORAPI_STUB'));
$stub = str_replace(['namespace Vexorapi', 'namespace {'], ['namespace Stub', 'namespace Stub {'], $stub);
eval(substr($stub, strlen('<?php')));

function signature(ReflectionFunctionAbstract $function): string
{
    $parameters = array_map(fn($parameter) => preg_replace('/^Parameter /', '', (string)$parameter),
                            $function->getParameters());
    $sensitive = array_map(
        fn($parameter) => array_map(fn($attribute) => $attribute->getName(), $parameter->getAttributes()),
        $function->getParameters());
    $text = $function->getName() . ' ' . implode(', ', $parameters) . ': ' . $function->getReturnType() .
        ' ' . json_encode($sensitive);
    return str_replace('Stub\\', 'Vexorapi\\', $text);
}

function members(ReflectionClass $class): array
{
    $methods = array_filter($class->getMethods(),
                            fn($method) => $method->getDeclaringClass()->getName() === $class->getName());
    $members = array_map('signature', $methods);
    foreach ($class->getProperties() as $property) {
        $members[] = $property->getName();
    }
    $parent = $class->getParentClass();
    $members[] = str_replace('Stub\\', 'Vexorapi\\', $parent ? $parent->getName() : '');
    $members[] = $class->isEnum() || $class->isFinal();
    sort($members);
    return $members;
}

$classes = array_filter((new ReflectionExtension('vexorapi'))->getClassNames());
echo count($classes), " classes\n";
foreach ($classes as $name) {
    $own = new ReflectionClass($name);
    $other = new ReflectionClass(str_replace('Vexorapi\\', 'Stub\\', $name));
    if (members($own) !== members($other)) {
        echo $name, "\n", print_r(array_diff(members($own), members($other)), true),
            print_r(array_diff(members($other), members($own)), true);
    }
}
$own = signature(new ReflectionFunction('vexorapi_call'));
var_dump($own === str_replace('Vexorapi\\vexorapi', 'vexorapi', signature(new ReflectionFunction('Stub\vexorapi_call'))));
var_dump(array_column(Vexorapi\Group::cases(), 'value') === array_column(Stub\Group::cases(), 'value'));
?>
--EXPECT--
13 classes
bool(true)
bool(true)
