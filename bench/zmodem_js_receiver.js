// Receives one file by zmodem.js on standard input and output, and stores it as upload.bin.

const fs = require('fs');
const Zmodem = require('zmodem.js');

const bytes = [];
const sentry = new Zmodem.Sentry({
  to_terminal() {},
  sender(octets) { fs.writeSync(1, Buffer.from(octets)); },
  on_retract() {},
  on_detect(detection) {
    const session = detection.confirm();
    session.on('offer', (offer) => {
      offer.on('input', (payload) => bytes.push(Buffer.from(payload)));
      offer.accept({on_input: () => {}}).then(
        () => fs.writeFileSync('upload.bin', Buffer.concat(bytes)));
    });
    session.on('session_end', () => process.exit(0));
    session.start();
  },
});
process.stdin.on('data', (data) => sentry.consume(Array.from(data)));
process.stdin.on('end', () => process.exit(1));
