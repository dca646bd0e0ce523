// What the headers of the platform libraries offer beside the library itself.
#include <ovra/log/LogAPI.h>
#include <ovra/rest/OvraTool.h>
#include <ovra/rest/RestRequest.h>
#include <ovra/rest/RestSettings.h>

#include <iostream>

int main()
{
    RestSettings settings = RestGetSettings();
    settings.timeoutSeconds = 7;
    RestSetSettings(settings);

    RestRequest request;
    request.SetServerUrl("/lun");
    request.BodyAddProperty("NAME", std::string("from outside"));

    std::cout << "timeout = " << RestGetSettings().timeoutSeconds << ", dropped = " << Log_Dropped_Count()
              << ", logs in \"" << Log_Directory() << "\"\n";
    return RestGetSettings().timeoutSeconds == 7 && OvraTool::CheckIPValid("192.0.2.1") ? 0 : 1;
}
