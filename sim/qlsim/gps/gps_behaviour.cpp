// SPDX-License-Identifier: Apache-2.0
#include "gps/gps_behaviour.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

namespace quarlin::sim {
namespace {

// With nobody reading, a real receiver talks into the void: it keeps no more than about two seconds of a 9600 baud
// line.
constexpr std::size_t kBacklog = 2048;

ReceiverSettings WithStart(ReceiverSettings settings, std::int64_t startUtc) {
    settings.startUtc = startUtc;
    return settings;
}

const char* NameOf(Fix fix) {
    switch (fix) {
        case Fix::kNone:
            return "none";
        case Fix::k2d:
            return "2d";
        case Fix::k3d:
            return "3d";
    }
    return "";
}

double Rounded(double value, int decimals) {
    const double scale = std::pow(10.0, decimals);
    return std::round(value * scale) / scale;
}

}  // namespace

GpsBehaviour::GpsBehaviour(const GpsSettings& settings, const Surroundings& surroundings)
    : settings_(settings),
      name_(surroundings.name),
      scenarioFolder_(surroundings.scenarioFolder),
      log_(surroundings.log),
      waits_(surroundings.pace.Waits()),
      port_(surroundings.makePort(settings.port, settings.baud)),
      receiver_(WithStart(settings.receiver, surroundings.startUtc), surroundings.seed),
      writer_(settings.sentences),
      faults_(settings.faults, surroundings.seed) {
}

void GpsBehaviour::Begin() {
    if (!settings_.plugged) {
        return;
    }
    try {
        port_->Open();
    } catch (const PortError& error) {
        throw DeviceError(name_ + ": " + error.what());
    }
}

void GpsBehaviour::End() {
    port_->Close();
}

double GpsBehaviour::NextStep() const {
    return replay_ ? replay_->NextPiece() : static_cast<double>(epoch_) / settings_.rate;
}

void GpsBehaviour::Step(double now) {
    lastTime_ = now;
    if (replay_) {
        StepReplay(now);
    } else {
        StepEpoch(now);
    }
}

void GpsBehaviour::StepEpoch(double now) {
    ++epoch_;
    last_ = receiver_.Measure(now);
    const std::vector<std::string> sentences = writer_.Write(last_);
    if (!port_->IsOpen() || silent_) {
        return;
    }
    if (waits_ && outbox_.size() > kBacklog) {
        lostSentences_ += sentences.size();
        return;
    }
    for (const std::string& sentence : sentences) {
        outbox_ += faults_.Send(sentence);
    }
    sentences_ += sentences.size();
}

void GpsBehaviour::StepReplay(double now) {
    if (!outbox_.empty()) {
        return;  // a replay loses nothing: it waits for its reader
    }
    outbox_ += replay_->TakePiece();
    if (replay_->AtEnd()) {
        EndReplay(now);
    }
}

void GpsBehaviour::EndReplay(double now) {
    silent_ = silent_ || replay_->ThenSilent();
    replay_.reset();
    epoch_ = std::max(epoch_, static_cast<std::int64_t>(std::ceil(now * settings_.rate - 1e-9)));
}

void GpsBehaviour::Push() {
    try {
        const std::size_t written = port_->Write(outbox_);
        bytes_ += written;
        outbox_.erase(0, written);
    } catch (const PortError& error) {
        LoseCable();
        log_->Write(lastTime_, name_, std::string("the port is gone: ") + error.what());
    }
}

std::string GpsBehaviour::Command(const Words& words, double now) {
    const GpsCommand command = ParseGpsCommand(words);
    lastTime_ = now;
    using Verb = GpsCommand::Verb;
    switch (command.verb) {
        case Verb::kLoseFix:
            fixDenied_ = true;
            receiver_.LoseFix();
            return "no fix from the next epoch on";
        case Verb::kRegainFix:
            fixDenied_ = false;
            receiver_.RegainFix();
            return "a fix again from the next epoch on";
        case Verb::kUnplug:
            return Unplug();
        case Verb::kPlug:
            return Plug(now);
        case Verb::kSilence:
            silent_ = command.on;
            return silent_ ? "silent" : "talking";
        case Verb::kNoise:
            faults_.Rates().noise = command.probability;
            return "noise " + words[1];
        case Verb::kDrop:
            faults_.Rates().drop = command.probability;
            return "drop " + words[1];
        case Verb::kBadChecksum:
            faults_.Rates().badChecksum = command.probability;
            return "bad-checksum " + words[1];
        case Verb::kSatellites:
            receiver_.LimitSatellites(command.satellites);
            return "satellites " + words[1];
        case Verb::kReplay:
            return StartReplay(command, now);
        case Verb::kSend:
            return Send(command.text + "\r\n");
        case Verb::kSendBytes:
            return Send(command.text);
        case Verb::kStatus:
            return Describe(now).dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    }
    return {};
}

std::string GpsBehaviour::StartReplay(const GpsCommand& command, double now) {
    NeedCable();
    std::string bytes = LoadReplayFile(command.text, scenarioFolder_);
    const std::size_t size = bytes.size();
    replay_.emplace(std::move(bytes), command, now, settings_.baud);
    if (replay_->AtEnd()) {
        EndReplay(now);
    }
    return "replaying " + std::to_string(size) + " bytes";
}

std::string GpsBehaviour::Plug(double now) {
    if (port_->IsOpen()) {
        return "plugged in already";
    }
    try {
        port_->Open();
    } catch (const PortError& error) {
        throw CommandError(error.what());
    }
    receiver_.PowerUpAgain(now);
    return "plugged in";
}

std::string GpsBehaviour::Unplug() {
    if (!port_->IsOpen()) {
        return "unplugged already";
    }
    LoseCable();
    return "unplugged";
}

void GpsBehaviour::LoseCable() {
    port_->Close();
    outbox_.clear();
    if (replay_) {
        EndReplay(lastTime_);
    }
}

std::string GpsBehaviour::Send(const std::string& bytes) {
    NeedCable();
    outbox_ += bytes;
    return "sent " + std::to_string(bytes.size()) + " bytes";
}

void GpsBehaviour::NeedCable() const {
    if (!port_->IsOpen()) {
        throw CommandError("the receiver is unplugged");
    }
}

nlohmann::ordered_json GpsBehaviour::Describe(double now) {
    nlohmann::ordered_json state;
    state["device"] = name_;
    state["kind"] = "gps";
    state["seconds"] = Rounded(now, 3);
    state["port"] = settings_.port;
    state["plugged"] = port_->IsOpen();
    state["silent"] = silent_;
    state["replaying"] = replay_ ? nlohmann::ordered_json(replay_->Name()) : nlohmann::ordered_json(nullptr);
    state["fix_denied"] = fixDenied_;
    state["fix"] = NameOf(last_.fix);
    if (last_.fix != Fix::kNone) {
        state["latitude"] = Rounded(last_.position.latitude, 7);
        state["longitude"] = Rounded(last_.position.longitude, 7);
        state["altitude"] = Rounded(last_.altitude, 1);
        state["speed_kmh"] = Rounded(last_.speed * 3.6, 1);
        state["course"] = Rounded(last_.course, 1);
        state["hdop"] = Rounded(last_.dilution.horizontal, 2);
    }
    const auto used = [](const ReceivedSatellite& satellite) { return satellite.used; };
    state["satellites_in_view"] = last_.satellites.size();
    state["satellites_used"] = std::count_if(last_.satellites.begin(), last_.satellites.end(), used);
    state["noise"] = faults_.Rates().noise;
    state["drop"] = faults_.Rates().drop;
    state["bad_checksum"] = faults_.Rates().badChecksum;
    state["epochs"] = epoch_;
    state["sentences"] = sentences_;
    state["lost_sentences"] = lostSentences_;
    state["bytes"] = bytes_;
    return state;
}

}  // namespace quarlin::sim
