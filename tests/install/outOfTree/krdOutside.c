/* The smallest plug-in a third party could write against the installed header alone: type 999,
 * no parameters, and every float variable reads 7.25. It defines only Info and Get. */
#include <KorelDataSource.h>

#include <string.h>

int krdVersion(void)
{
    return KRD_INTERFACE_VERSION;
}

int krdOutsideInfo(DD_DATA_TYPE_STRUCT* source)
{
    if (!source || !source->init)
        return -1;
    return source->init(source, "Outside", 999, 0);
}

int krdOutsideGet(VARIABLE_STRUCT* variable, DD_DATA_TYPE_STRUCT* source)
{
    (void)source;
    if (variable && variable->value && variable->type == KR_VAR_FLOAT) {
        const float value = 7.25f;
        memcpy(variable->value, &value, sizeof value);
    }
    return 0;
}
