// A module with nothing in it but its version resource.
extern "C" int VersionedModule()
{
    return 0;
}
