#include "platform/network/https_feed_fetcher.hpp"

#include <QCoreApplication>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QTimer>
#include <QUrl>

#include <memory>
#include <optional>

namespace lumenote::platform::network {

namespace {

constexpr int kMaximumRedirects = 5;

// A process without a Qt application (the command line) gets one for the
// duration of a fetch; Qt keeps pointers to argc and argv, hence statics.
std::unique_ptr<QCoreApplication> applicationForFetch() {
    if (QCoreApplication::instance() != nullptr) {
        return nullptr;
    }
    static int argc = 1;
    static char name[] = "lumenote";
    static char* argv[] = {name, nullptr};
    return std::make_unique<QCoreApplication>(argc, argv);
}

QNetworkRequest requestFor(const QUrl& url, const HttpsFetchOptions& options) {
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::UserAgentHeader,
                      QByteArray::fromStdString(options.userAgent));
    // Qt would otherwise send the system's languages and ask for compression;
    // neither is needed, and the body is counted as the bytes that arrive.
    request.setRawHeader("Accept-Language", "*");
    request.setRawHeader("Accept-Encoding", "identity");
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::UserVerifiedRedirectPolicy);
    request.setMaximumRedirectsAllowed(kMaximumRedirects);
    request.setTransferTimeout(static_cast<int>(options.timeout.count()));
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    for (const std::string& pem : options.extraTrustedCertificates) {
        tls.addCaCertificates(QSslCertificate::fromData(QByteArray::fromStdString(pem)));
    }
    request.setSslConfiguration(tls);
    return request;
}

}  // namespace

HttpsFeedFetcher::HttpsFeedFetcher(HttpsFetchOptions options) : options_(std::move(options)) {}

Result<std::string, updates::FetchError> HttpsFeedFetcher::fetch(const std::string& httpsAddress,
                                                                 std::size_t maximumBytes) {
    const auto application = applicationForFetch();
    const QUrl url(QString::fromStdString(httpsAddress), QUrl::StrictMode);
    if (!url.isValid() || url.scheme() != QLatin1String("https") || url.host().isEmpty()) {
        return fail(updates::FetchError::unreachable);
    }
    QNetworkAccessManager manager;
    manager.setCookieJar(nullptr);
    QNetworkReply* reply = manager.get(requestFor(url, options_));
    std::optional<updates::FetchError> failure;
    const auto stop = [&failure, reply](updates::FetchError error) {
        if (!failure) {
            failure = error;
        }
        reply->abort();
    };
    QObject::connect(reply, &QNetworkReply::redirected, reply, [&stop, reply](const QUrl& target) {
        if (target.scheme() == QLatin1String("https")) {
            emit reply->redirectAllowed();
        } else {
            stop(updates::FetchError::insecureRedirect);
        }
    });
    QObject::connect(reply, &QNetworkReply::downloadProgress, reply,
                     [&stop, maximumBytes](qint64 received, qint64 total) {
                         const auto limit = static_cast<qint64>(maximumBytes);
                         if (received > limit || total > limit) {
                             stop(updates::FetchError::tooLarge);
                         }
                     });
    QEventLoop loop;
    QTimer deadline;
    deadline.setSingleShot(true);
    QObject::connect(&deadline, &QTimer::timeout, reply,
                     [&stop] { stop(updates::FetchError::unreachable); });
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    deadline.start(options_.timeout);
    if (!reply->isFinished()) {
        loop.exec();
    }
    deadline.stop();
    const std::unique_ptr<QNetworkReply> finished(reply);
    if (failure) {
        return fail(*failure);
    }
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (reply->error() != QNetworkReply::NoError || status < 200 || status > 299) {
        return fail(updates::FetchError::unreachable);
    }
    const QByteArray body = reply->readAll();
    if (static_cast<std::size_t>(body.size()) > maximumBytes) {
        return fail(updates::FetchError::tooLarge);
    }
    return body.toStdString();
}

}  // namespace lumenote::platform::network
