#include "HttpServer.h"
#include "TempDir.h"
#include "VKcurlHttp.h"
#include "VKcurlService.h"

#include <cstdlib>
#include <cstring>
#include <curl/curl.h>
#include <filesystem>
#include <gmock/gmock.h>

using testing::IsSupersetOf;
using testing::Pair;
using vktest::HttpServer;
using vktest::LoopbackServer;
using vktest::TestAuthority;
using Request = HttpServer::Request;
using Response = HttpServer::Response;

namespace {

Response Fine(const Request&) { return {200, "page", {"X-Answer: yes"}}; }

std::string Shown(const Request& request) { return request.method + " " + request.target + " " + request.body; }

/// A buffer that frees itself.
struct Buffer : VDK_BUFFER
{
    Buffer() : VDK_BUFFER{} {}
    ~Buffer() { EmptyVdkBuffer(this); }
    std::string Text() const { return data ? data : ""; }
};

/// A record to send, with these parameters; frees itself.
struct Record : http_service
{
    Record(const std::string& address, std::initializer_list<const char*> parameters) : http_service{}
    {
        url = strdup(address.c_str());
        params = static_cast<char**>(calloc(parameters.size(), sizeof(char*)));
        for (const char* parameter : parameters)
            params[param_count++] = strdup(parameter);
    }
    ~Record() { VKhttpClean(this); }
};

/// Runs a test in a directory beside which "../config" and "../temp" are.
class InInstallation : public testing::Test
{
protected:
    void SetUp() override
    {
        for (const char* name : {"bin", "config", "temp"})
            std::filesystem::create_directory(m_root.Path() / name);
        std::filesystem::current_path(m_root.Path() / "bin");
    }
    void TearDown() override { std::filesystem::current_path(m_before); }

    TempDir m_root;
    HttpServer m_server{Fine};
    std::filesystem::path m_before = std::filesystem::current_path();
};

using StandAloneHttp = InInstallation;
using VKcurlServiceTest = InInstallation;

TEST_F(StandAloneHttp, PostsWhatItIsGivenOverHttp10)
{
    Buffer page, headers;
    char fields[] = "a=1&b=%20";
    EXPECT_EQ(Curl_HttpPostUrlEncodedFields(m_server.Url("/p").c_str(), fields, &page, &headers, nullptr), CURLE_OK);
    Request last = m_server.Last();
    EXPECT_EQ(last.method + last.target + last.version, "POST/pHTTP/1.0");
    EXPECT_EQ(last.body, "a=1&b=%20");
    EXPECT_EQ(last.Header("user-agent"), "VardockClient");
    EXPECT_EQ(page.Text(), "page");
    EXPECT_NE(headers.Text().find("X-Answer: yes"), std::string::npos);

    EXPECT_EQ(Curl_HttpPostUrlEncodedFields(m_server.Url().c_str(), nullptr, nullptr, nullptr, nullptr), CURLE_OK);
    EXPECT_EQ(m_server.Last().method, "POST");
    EXPECT_EQ(m_server.Last().Header("content-length"), "0");

    char one[] = "na me=v&v=2", two[] = "flag";
    char* pairs[] = {one, two};
    EXPECT_EQ(Curl_HttpPostUrl(m_server.Url().c_str(), pairs, 2, nullptr, nullptr, nullptr, "X-Extra: 7"), CURLE_OK);
    EXPECT_EQ(m_server.Last().body, "na%20me=v%26v%3d2&flag=");
    EXPECT_EQ(m_server.Last().Header("x-extra"), "7");
}

TEST_F(StandAloneHttp, PostsAFormWithAFile)
{
    char field[] = "subject=Fire, floor 3";
    char* fields[] = {field};
    std::string file = m_root.Write("plan.txt", "the plan");
    char header[] = "X-Form: 1";
    EXPECT_EQ(Curl_HttpPostMultiPart(m_server.Url().c_str(), fields, 1, file.data(), header, nullptr, nullptr),
              CURLE_OK);
    const Request last = m_server.Last();
    EXPECT_EQ(last.Header("content-type").rfind("multipart/form-data", 0), 0U);
    EXPECT_EQ(last.Header("x-form"), "1");
    for (const char* part : {"name=\"subject\"", "Fire, floor 3", "filename=\"plan.txt\"", "the plan"})
        EXPECT_NE(last.body.find(part), std::string::npos) << part;
    std::string missing = m_root / "no-such-plan";
    EXPECT_EQ(Curl_HttpPostMultiPart(m_server.Url().c_str(), fields, 1, missing.data(), header, nullptr, nullptr),
              CURLE_READ_ERROR);
}

TEST_F(StandAloneHttp, ChecksThePeerWhereTheSessionDoesNot)
{
    TestAuthority mine("Mine"), other("Other");
    const std::tuple<const char*, std::string, const char*, bool> cases[] = {
        {"private authority", mine.Bundle(), "IP:127.0.0.1", true},
        {"another authority", other.Bundle(), "IP:127.0.0.1", false},
        {"another name", mine.Bundle(), "DNS:elsewhere", false},
        {"no bundle", m_root / "no-such-bundle", "IP:127.0.0.1", false}};
    for (const auto& [what, bundle, names, good] : cases) {
        HttpServer server(Fine, LoopbackServer::Tls{mine.Issue("server", "", names)});
        const int code = Curl_HttpPostUrlEncodedFields(server.Url().c_str(), nullptr, nullptr, nullptr, bundle.c_str());
        EXPECT_EQ(code == CURLE_OK, good) << what << ": " << Curl_GetErrStr(code);
        VKcurlService session;
        EXPECT_EQ(session.SendRequest(VKcurlService::GET, server.Url(), ""), CURLE_OK) << what;
        EXPECT_EQ(session.GetPage(), "page");
    }
}

TEST_F(StandAloneHttp, SendsARecordAndKeepsTheAnswerInIt)
{
    Record service(m_server.Url(), {"to=42"});
    char error[64] = "old";
    EXPECT_EQ(VKMsgCurlHttpSendMessage(error, sizeof error, &service, nullptr, nullptr), CURLE_OK);
    EXPECT_STREQ(error, "");
    EXPECT_STREQ(service.result, "page");
    EXPECT_EQ(m_server.Last().body, "to=42");
    vk::SetHttpText(service.url, "http://127.0.0.1:1/");
    EXPECT_EQ(VKMsgCurlHttpSendMessage(error, 12, &service, nullptr, nullptr), CURLE_COULDNT_CONNECT);
    EXPECT_EQ(std::string(error), std::string(Curl_GetErrStr(CURLE_COULDNT_CONNECT)).substr(0, 11));
    VKhttpClean(&service);
    EXPECT_EQ(service.url, nullptr);
}

TEST(HttpStrEncode, KeepsFewCharacters)
{
    EXPECT_EQ(HttpStrEncode(std::string("aZ0/_.-~ \xC3\xA9+")), "aZ0/_.%2d%7e%20%c3%a9%2b");
    char in[] = "ab c", out[6];
    EXPECT_EQ(HttpStrEncode(out, sizeof out, in), 5);
    EXPECT_STREQ(out, "ab%20");
    Buffer buffer;
    char name[] = "a b", value[] = "=", second[] = "c";
    AddHttpParam(&buffer, name, value);
    AddHttpParam(&buffer, second, second);
    EXPECT_EQ(buffer.Text(), "a%20b=%3d&c=c");
}

TEST_F(VKcurlServiceTest, SendsEachMethodWithItsOwnShape)
{
    VKcurlService session(false);
    std::vector<std::string> parameters = {"q=a b", "n=1"};
    using Service = VKcurlService;
    const std::tuple<Service::HttpMethType, const char*> cases[] = {{Service::GET, "GET /x?q=a%20b&n=1 "},
                                                                    {Service::POST, "POST /x q=a%20b&n=1"},
                                                                    {Service::PUT, "PUT /x q=a%20b&n=1"},
                                                                    {Service::DELETE, "DELETE /x?q=a%20b&n=1 "},
                                                                    {Service::GET, "GET /x?q=a%20b&n=1 "}};
    for (const auto& [method, shape] : cases) {
        EXPECT_EQ(session.SendRequests(method, m_server.Url("/x"), parameters), CURLE_OK);
        EXPECT_EQ(Shown(m_server.Last()), shape);
        EXPECT_EQ(m_server.Last().Header("user-agent"), "Mozilla/4.0 (compatible; MSIE 5.01; Windows NT 5.0)");
    }
    for (const auto& [method, name] : {std::pair(Service::POST, "POST"), {Service::PUT, "PUT"}}) {
        EXPECT_EQ(session.SendRequest(method, m_server.Url(), ""), CURLE_OK);
        EXPECT_EQ(m_server.Last().method, name);
        EXPECT_EQ(m_server.Last().Header("content-length"), "0");
    }
}

TEST_F(VKcurlServiceTest, SendsARecordWithItsHeadersAndTurnsBackslashes)
{
    VKcurlService session;
    std::vector<std::string> others; // uploads of other threads and processes in these seconds
    for (long second = time(nullptr), last = second + 60; second < last; ++second)
        m_root.Write(others.emplace_back("temp/VKFileUpload." + std::to_string(second)), "another's");
    session.SetHeaders("X-Always: 1\r\nX-Smuggled: 1");
    Record service(m_server.Url() + "a\\b", {"p=1"});
    service.method = VKcurlService::PUT;
    service.headers = strdup("X-One: a\r\nX-Two: b");
    service.cookie = strdup("k=v");
    service.referer = strdup("http://from/");
    EXPECT_TRUE(session.SendMessage(&service));
    EXPECT_EQ(Shown(m_server.Last()), "PUT /a/b p=1");
    EXPECT_THAT(m_server.Last().headers, IsSupersetOf({Pair("x-always", "1"), Pair("x-one", "a"), Pair("x-two", "b"),
                                                       Pair("cookie", "k=v"), Pair("referer", "http://from/")}));
    EXPECT_EQ(m_server.Last().Header("x-smuggled"), "");
    EXPECT_STREQ(service.result, "page");
    for (const std::string& other : others) {
        EXPECT_EQ(m_root.Read(other), "another's");
        std::filesystem::remove(m_root / other);
    }
    EXPECT_TRUE(std::filesystem::is_empty(m_root.Path() / "temp"));
    free(std::exchange(service.params[0], nullptr));
    service.method = 0;
    EXPECT_TRUE(session.SendMessage(&service));
    EXPECT_EQ(Shown(m_server.Last()), "GET /a/b?= ");

    session.SendRequest(VKcurlService::GET, m_server.Url(), "");
    EXPECT_EQ(m_server.Last().Header("x-always") + m_server.Last().Header("x-one"), "1");
    session.ResetHeaders();
    session.SendRequest(VKcurlService::GET, m_server.Url(), "");
    EXPECT_EQ(m_server.Last().Header("x-always"), "");
}

TEST_F(VKcurlServiceTest, FollowsARedirectWithoutCarryingTheKeyToAnotherHost)
{
    HttpServer target(Fine);
    const std::string elsewhere = "http://localhost:" + std::to_string(target.Port()) + "/there";
    HttpServer first([&](const Request&) { return Response{302, "", {"Location: " + elsewhere}}; });
    VKcurlService session;
    session.SetHeaders("Authorization:key=secret");
    EXPECT_EQ(session.SendRequest(VKcurlService::GET, first.Url(), ""), CURLE_OK);
    EXPECT_EQ(session.GetReturnCode(), 200);
    EXPECT_EQ(first.Last().Header("authorization"), "key=secret");
    EXPECT_EQ(target.Last().target, "/there");
    EXPECT_EQ(target.Last().Header("authorization"), "");

    HttpServer circle([](const Request&) { return Response{302, "", {"Location: /again"}}; });
    EXPECT_EQ(session.SendRequest(VKcurlService::GET, circle.Url(), ""), CURLE_TOO_MANY_REDIRECTS);
}

TEST_F(VKcurlServiceTest, ShowsItsPasswordToTheProxy)
{
    HttpServer proxy([](const Request& request) {
        return request.Header("proxy-authorization") == "Basic bWU6cHc=" ? Response{200, "through"}
                                                                         : Response{407, "who are you"};
    });
    const std::string address = "127.0.0.1:" + std::to_string(proxy.Port());
    VKcurlService session;
    VKcurlService::Route route;
    route.proxy = address.c_str();
    EXPECT_EQ(session.SendRequest(VKcurlService::GET, "http://far.invalid/x", "", route), CURLE_OK);
    EXPECT_EQ(session.GetReturnCode(), 407);
    route.proxyUser = "me";
    route.proxyPassword = "pw";
    EXPECT_EQ(session.SendRequest(VKcurlService::GET, "http://far.invalid/x", "", route), CURLE_OK);
    EXPECT_EQ(session.GetPage(), "through");
    EXPECT_EQ(proxy.Last().target, "http://far.invalid/x");
}

TEST_F(VKcurlServiceTest, KeepsCookiesForTheSessionAndWritesThemOut)
{
    HttpServer server([](const Request&) { return Response{200, "", {"Set-Cookie: id=7; Max-Age=600"}}; });
    {
        VKcurlService session;
        session.EnableCookies();
        for (int i = 0; i < 2; ++i)
            EXPECT_EQ(session.SendRequest(VKcurlService::GET, server.Url(), ""), CURLE_OK);
        EXPECT_EQ(server.Last().Header("cookie"), "id=7");
        session.FlushCookies();
    }
    VKcurlService later;
    later.EnableCookies();
    EXPECT_EQ(later.SendRequest(VKcurlService::GET, server.Url(), ""), CURLE_OK);
    EXPECT_EQ(server.Last().Header("cookie"), "id=7");
}

TEST_F(VKcurlServiceTest, DownloadsIntoAFileByteForByte)
{
    const std::string content("binary\0content", 14);
    HttpServer server([&](const Request&) { return Response{200, content}; });
    VKcurlService session;
    const std::string path = m_root / "got";
    EXPECT_EQ(session.DownloadFile(server.Url().c_str(), path.c_str()), CURLE_OK);
    EXPECT_EQ(m_root.Read("got"), content);
    EXPECT_EQ(server.Last().Header("user-agent"), "Mozilla/4.0");
    EXPECT_EQ(session.DownloadFile(server.Url().c_str(), "/no/such/dir/file"), CURLE_WRITE_ERROR);
    EXPECT_EQ(session.DownloadFile(server.Url().c_str(), "/dev/full"), CURLE_WRITE_ERROR);
}

TEST_F(VKcurlServiceTest, GivesAHangingRequestUpAndTellsTheStatusOfAnyOther)
{
    HttpServer silent([](const Request&) { return Response{0}; });
    VKcurlService session;
    session.SetTimeout(1);
    EXPECT_EQ(session.SendRequest(VKcurlService::GET, silent.Url(), ""), CURLE_OPERATION_TIMEDOUT);
    for (const int status : {400, 401, 503}) {
        HttpServer server([status](const Request&) { return Response{status, "why"}; });
        EXPECT_EQ(session.SendRequest(VKcurlService::POST, server.Url(), "body"), CURLE_OK);
        EXPECT_EQ(session.GetReturnCode(), status);
        EXPECT_EQ(session.GetPage(), "why");
    }
    EXPECT_EQ(session.GetErrorStr(CURLE_COULDNT_CONNECT), curl_easy_strerror(CURLE_COULDNT_CONNECT));
    EXPECT_TRUE(session.CloseSession());
    EXPECT_FALSE(session.IsSessionOpen());
    EXPECT_FALSE(session.SendMessage(nullptr));
}

} // namespace
