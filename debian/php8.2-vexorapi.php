mod debian/vexorapi.ini
