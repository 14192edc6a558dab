--TEST--
vexorapi_call returns the result exactly, and false where the library declines
--FILE--
<?php
var_dump(vexorapi_call('<HX_Adapter_GetCount type="function"/>'));
var_dump(vexorapi_call(''), vexorapi_call('no XML'), vexorapi_call('<Nothing type="function"/>'));
var_dump(vexorapi_call("<HX_Adapter_GetCount type=\"function\"/>\0"));
?>
--EXPECT--
string(91) "<HX_Adapter_GetCount type="function">
  <RetVal type="U8">2</RetVal>
</HX_Adapter_GetCount>"
bool(false)
bool(false)
bool(false)
bool(false)
