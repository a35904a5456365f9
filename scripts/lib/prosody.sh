# A private XMPP server on loopback for the demonstration, the tests and the benchmarks; to be sourced by bash.
#
#   prosody_prepare DIR            config, fresh certificate and data below DIR (see the settings)
#   prosody_accounts DIR           accounts, one "USER PASSWORD" a line on standard input
#   prosody_start DIR              starts it as a child; ready on return; sets PROSODY_PID
#   prosody_port DIR               prints its port
#   prosody_stop                   ends PROSODY_PID in order, prosody_kill at once; both wait for its end
#
# Settings, from the environment of prosody_prepare:
#   PROSODY_DOMAIN   domain served (localhost)
#   PROSODY_TLS      required (default) or off
#   PROSODY_OFFLINE  on keeps messages for accounts that are not there; off (default) bounces them
#   PROSODY_PORT     port, when it must be a certain one; otherwise a free one is taken
#
# Nothing limits the clients, nothing is delayed for larger packets, no other server is ever talked to.

# A port that nobody listens on, below the range from which the kernel takes ports for outgoing connections.
_prosody_free_port() {
    local port
    while :; do
        port=$((20000 + RANDOM % 12000))
        if ! (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; then
            echo "$port"
            return
        fi
    done
}

# The name under which the server keeps files of a host or an account: letters and digits, the rest as %xx.
_prosody_file_name() {
    local text=$1 name='' char i LC_ALL=C
    for ((i = 0; i < ${#text}; i++)); do
        char=${text:i:1}
        case $char in
        [A-Za-z0-9]) name+=$char ;;
        *) printf -v char '%%%02x' "'$char" && name+=$char ;;
        esac
    done
    printf '%s' "$name"
}

_prosody_write_config() {
    local dir=$1 port=$2 domain=$3 tls=$4 offline=$5
    local modules='"roster"; "saslauth"; "disco"; "posix";' disabled='"s2s"; "s2s_auth_certs";'
    local encryption='c2s_require_encryption = false
allow_unencrypted_plain_auth = true'
    if [ "$tls" != off ]; then
        modules+=' "tls";'
        encryption="c2s_require_encryption = true
ssl = { key = \"$dir/server.key\"; certificate = \"$dir/server.crt\" }"
    fi
    [ "$offline" = on ] || disabled+=' "offline";'
    cat >"$dir/prosody.cfg.lua" <<CONFIG
run_as_root = true
daemonize = false
pidfile = "$dir/prosody.pid"
data_path = "$dir/data"
certificates = "$dir"
log = { ${PROSODY_LOG_LEVEL:-info} = "$dir/prosody.log" }
interfaces = { "127.0.0.1" }
c2s_ports = { $port }
s2s_ports = { }
modules_enabled = { $modules }
modules_disabled = { $disabled }
$encryption
c2s_stanza_size_limit = 16 * 1024 * 1024
network_settings = { nagle = false; tcp_backlog = 1024 }
authentication = "internal_plain"
storage = "internal"
VirtualHost "$domain"
CONFIG
}

prosody_prepare() {
    local dir=$1 domain=${PROSODY_DOMAIN:-localhost}
    mkdir -p "$dir"
    dir=$(cd "$dir" && pwd)
    mkdir -p "$dir/data/$(_prosody_file_name "$domain")/accounts"
    openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 -subj "/CN=$domain" \
        -addext "subjectAltName=DNS:$domain,IP:127.0.0.1" -keyout "$dir/server.key" -out "$dir/server.crt" 2>/dev/null ||
        { echo "prosody: openssl could not make a certificate in $dir" >&2 && return 1; }
    local port=${PROSODY_PORT:-$(_prosody_free_port)}
    printf '%s\n' "$port" >"$dir/port"
    printf '%s\n' "$domain" >"$dir/domain"
    _prosody_write_config "$dir" "$port" "$domain" "${PROSODY_TLS:-required}" "${PROSODY_OFFLINE:-off}"
}

prosody_port() { cat "$1/port"; }

prosody_accounts() {
    local dir=$1 user password folder
    folder=$dir/data/$(_prosody_file_name "$(cat "$dir/domain")")/accounts
    while read -r user password; do
        [ -n "$user" ] || continue
        printf 'return {\n\t["password"] = "%s";\n};\n' "$password" >"$folder/$(_prosody_file_name "$user").dat"
    done
}

# Ready when the server says that its port is open; a port that was lost to somebody else is replaced once by another.
prosody_start() {
    local dir attempt i
    dir=$(cd "$1" && pwd)
    for attempt in 1 2; do
        : >"$dir/prosody.log"
        prosody -F --config "$dir/prosody.cfg.lua" >"$dir/prosody.out" 2>&1 </dev/null &
        PROSODY_PID=$!
        for ((i = 0; i < 500; i++)); do
            grep -q "Activated service 'c2s' on .*:$(prosody_port "$dir")" "$dir/prosody.log" && return 0
            grep -q 'Failed to open server port' "$dir/prosody.log" && break
            kill -0 "$PROSODY_PID" 2>/dev/null || break
            sleep 0.02
        done
        prosody_kill
        [ "$attempt" -eq 1 ] && [ -z "${PROSODY_PORT:-}" ] || break
        local lost port
        lost=$(prosody_port "$dir")
        port=$(_prosody_free_port)
        sed -i "s/c2s_ports = { $lost }/c2s_ports = { $port }/" "$dir/prosody.cfg.lua"
        printf '%s\n' "$port" >"$dir/port"
    done
    echo "prosody: did not start:" >&2
    tail -n 5 "$dir/prosody.out" "$dir/prosody.log" >&2
    return 1
}

_prosody_end() {
    [ -n "${PROSODY_PID:-}" ] || return 0
    kill "-$1" "$PROSODY_PID" 2>/dev/null || true
    wait "$PROSODY_PID" 2>/dev/null || true
    PROSODY_PID=
}

prosody_stop() { _prosody_end TERM; }
prosody_kill() { _prosody_end KILL; }
